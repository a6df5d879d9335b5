#pragma once

#include "device/kestrometer_state.h"

#include <QByteArray>
#include <QVector>

/**
 * Switches one instrument off: told what it says and how time passes, it tells what to send.
 *
 * It has no port and no clock of its own, and so does in a test within a moment what takes an
 * instrument minutes.
 */
class SwitchOff
{
public:
    using Commands = QVector<QByteArray>;  ///< each to be sent in one write

    enum class Result
    {
        None,           ///< still at work
        Off,            ///< three valid lines in a row say so
        Silent,         ///< no byte in the last minute
        NotUnderstood,  ///< bytes, but no valid line in the last minute
    };

    /** To be called once, when the line is held and what waited on it has been dropped. */
    Commands begin(qint64 now_ms);
    /** Takes what has arrived, cut anywhere. */
    Commands take(const QByteArray& bytes);
    /** Lets time pass; a long time in which nobody called does not count as silence. */
    Commands pass(qint64 now_ms);

    Result result = Result::None;
    KestrometerState first_state = Unknown;  ///< of the first valid line
    KestrometerState last_state = Unknown;   ///< of the last valid line
    bool heard = false;                      ///< a valid line
    int id = -1;
    double voltage = 0.0;
    double current = 0.0;
    int other_lines = 0;  ///< valid lines that say anything but Off
    int resets = 0;

    static constexpr qint64 RESET_AFTER_MS =
        5000;  ///< without a valid line, and again after as long
    static constexpr qint64 GIVE_UP_AFTER_MS = 60000;
    static constexpr qint64 LONGEST_STEP_MS = 2000;
    static constexpr int MOST_RESETS = 3;
    static constexpr int LINES_FOR_OFF = 3;

private:
    void take_line(const QByteArray& line, Commands& commands);

    QByteArray buffer;  ///< what has come behind the last line end
    qint64 last_pass_ms = 0;
    qint64 silent_ms = 0;                   ///< without a valid line
    qint64 next_reset_ms = RESET_AFTER_MS;  ///< of silence
    bool bytes_in_silence = false;
    int off_lines = 0;  ///< valid lines in a row that say Off
};
