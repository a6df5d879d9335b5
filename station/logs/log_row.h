#pragma once

#include <QString>
#include <QStringList>

// Of a discharge row, in the logs of both generations.
constexpr int LEAST_COLUMNS = 4;  ///< without a resistance
constexpr int MOST_COLUMNS = 5;

/** A discharge row of a data log of either generation. */
struct LogRow
{
    double time = 0.0;  ///< seconds since the section began
    double amp_hours = 0.0;
    double voltage = 0.0;
    double current = 0.0;
    double resistance = 0.0;  ///< ohms, if there is a fifth column
    bool has_resistance = false;
    double watt_hours = 0.0;  ///< of the cycle up to here, as a reader adds them up
};

/**
 * Reads a whole row of four or five plain numbers, "181.2,0.502,40.11,9.97,0.014", in one walk.
 *
 * @return false for every other line, which may be a row all the same, of an unusual form
 */
bool read_plain_row(const QString& line, QChar separator, LogRow& row);

/**
 * Reads the four or five fields of a row of any form.
 *
 * @return how many there are before the first that is no number; the row is one from four on
 */
int read_columns(const QStringList& fields, LogRow& row);

/** What QString::toDouble gives; false without touching `value` if the text is no number. */
bool read_number(const QString& text, double& value);
