#pragma once

#include <QByteArray>
#include <QString>

/** Lines of a current log as bytes: their form, their key, and what the readers say of them. */

inline const QByteArray MARK = "Kestrometer Log";
inline const QByteArray CHARGE_NUMBER = "Charge Number";
inline const QByteArray DISCHARGE_NUMBER = "Discharge Number";
inline const QByteArray TIMESTAMP = "Timestamp";
constexpr int LONGEST_ROW = 200;  ///< characters

enum class Form
{
    Charge,
    Discharge,
    Other
};

/** Byte by byte, zeros too, at which the toolkit's own way ends. */
QString text_of(const QByteArray& line);

/** The row that a line is in the exact form of the application. */
Form form_of(const QByteArray& line);

/** "Charge Number:               3" in the width of the application's heads. */
QByteArray number_line(bool charge, int number);

/** What stands before the first colon, as the readers see it; empty without a colon. */
QByteArray key_of(const QByteArray& line);

/** Whether the application would load this. */
bool loads(const QByteArray& log);
