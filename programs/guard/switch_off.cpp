#include "guard/switch_off.h"

#include "device/reset_command.h"
#include "device/telemetry_line.h"

#include <QString>

#include <algorithm>

namespace
{
const QByteArray LINE_END = "\r\n";
// No line is half as long: whatever babbles on without an end is cut short.
constexpr int LONGEST_LINE = 4096;
}  // namespace

SwitchOff::Commands SwitchOff::begin(qint64 now_ms)
{
    last_pass_ms = now_ms;
    return {command_for_state(Off)};
}

SwitchOff::Commands SwitchOff::take(const QByteArray& bytes)
{
    Commands commands;
    bytes_in_silence = bytes_in_silence || !bytes.isEmpty();
    buffer += bytes;
    int start = 0;
    for (int end = 0; (end = buffer.indexOf(LINE_END, start)) >= 0; start = end + LINE_END.size())
        take_line(buffer.mid(start, end - start), commands);
    buffer = buffer.mid(start).right(LONGEST_LINE);
    return commands;
}

void SwitchOff::take_line(const QByteArray& line, Commands& commands)
{
    KestrometerState state = Unknown;
    double volts = 0.0;
    double amps = 0.0;
    int number = -1;
    if (result != Result::None ||
        !read_telemetry_line(QString::fromUtf8(line), volts, amps, number, state))
        return;
    if (!heard)
        first_state = state;
    heard = true;
    last_state = state;
    id = number;
    voltage = volts;
    current = amps;
    silent_ms = 0;
    next_reset_ms = RESET_AFTER_MS;
    bytes_in_silence = false;
    off_lines = state == Off ? off_lines + 1 : 0;
    if (off_lines >= LINES_FOR_OFF)
        result = Result::Off;
    if (state != Off && ++other_lines % 2 == 0)
        commands << command_for_state(Off);
}

SwitchOff::Commands SwitchOff::pass(qint64 now_ms)
{
    silent_ms += std::clamp<qint64>(now_ms - last_pass_ms, 0, LONGEST_STEP_MS);
    last_pass_ms = now_ms;
    if (result != Result::None)
        return {};
    if (silent_ms >= GIVE_UP_AFTER_MS) {
        result = bytes_in_silence ? Result::NotUnderstood : Result::Silent;
        return {};
    }
    if (silent_ms < next_reset_ms || resets >= MOST_RESETS)
        return {};
    ++resets;
    next_reset_ms = silent_ms + RESET_AFTER_MS;
    return {RESET_COMMAND, command_for_state(Off)};
}
