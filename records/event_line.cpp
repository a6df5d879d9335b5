#include "records/event_line.h"

namespace
{
const QString SWITCHING = "Switching to phase ";
const QString BECAUSE = " because ";
constexpr int STAMP_LENGTH = 19;

// clang-format off
constexpr TestPhaseTraits PHASES[] = {
    // phase, text, condition                                         needs rows, is step
    {TestPhase::Unknown, "?", Condition::Ended,                             false, false},
    {TestPhase::Charging, "Charging", Condition::Charging,                  true,  false},
    {TestPhase::FullChargeTest, "Full Charge Test", Condition::TestingCharge, true, true},
    {TestPhase::ReadyForDischarge, "Ready for", Condition::WaitsForOperator, false, false},
    {TestPhase::Discharging, "Discharging", Condition::Discharging,         true,  false},
    {TestPhase::ResistanceTest, "IR Test", Condition::TestingResistance,    true,  true},
    {TestPhase::ResistanceRecovery, "Recovering from IR Test", Condition::TestingResistance,
                                                                            true,  true},
    {TestPhase::FinalCharge, "Charging (final)", Condition::Charging,       true,  false},
    // The next line of the instrument ends it, whatever it says.
    {TestPhase::FinalChargeTest, "Final Charge Test", Condition::TestingCharge, true, false},
    {TestPhase::Done, "Done", Condition::Done,                              false, false},
};
// clang-format on

constexpr bool rows_in_order()
{
    int row = 0;
    for (const TestPhaseTraits& traits : PHASES)
        if (int(traits.phase) != row++)
            return false;
    return row == int(TestPhase::Done) + 1;
}
static_assert(rows_in_order(), "PHASES is indexed by TestPhase");

/** How the texts begin that hold no figures before their end. */
struct Beginning
{
    EventKind kind;
    const char* text;
};

constexpr Beginning BEGINNINGS[] = {
    {EventKind::BotchedTest, "botched IR test, "},
    {EventKind::Reset, "Attempting to reset the Kestrometer"},
};

/** The number that these digits make; -1 if one of them is none. */
int number_at(const QString& line, int begin, int digits)
{
    int number = 0;
    for (int i = begin; i < begin + digits; ++i) {
        const int digit = line.at(i).unicode() - '0';
        if (digit < 0 || digit > 9)
            return -1;
        number = number * 10 + digit;
    }
    return number;
}

/** "2020-04-03 09:15:02"; a format that is read anew for each line would take ten times as long. */
QDateTime stamp_at(const QString& line, int begin)
{
    constexpr struct
    {
        int place;
        char mark;
    } MARKS[] = {{4, '-'}, {7, '-'}, {10, ' '}, {13, ':'}, {16, ':'}};
    if (line.size() < begin + STAMP_LENGTH)
        return QDateTime();
    for (const auto& mark : MARKS)
        if (line.at(begin + mark.place) != mark.mark)
            return QDateTime();
    const auto number = [&line, begin](int place, int digits) {
        return number_at(line, begin + place, digits);
    };
    const QDate date(number(0, 4), number(5, 2), number(8, 2));
    const QTime time(number(11, 2), number(14, 2), number(17, 2));
    return date.isValid() && time.isValid() ? QDateTime(date, time) : QDateTime();
}

/** A change follows a line that was cut off without an end, as when the power failed. */
int begin_of_change(const QString& line)
{
    const int at = line.lastIndexOf(SWITCHING);
    return at > STAMP_LENGTH ? at - STAMP_LENGTH - 1 : 0;
}

bool is_hex_digit(QChar character)
{
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'F');
}

/** "55 00 04" */
bool is_command(QStringView text)
{
    if (text.isEmpty() || text.size() % 3 != 2)
        return false;
    for (int i = 0; i < text.size(); ++i)
        if (i % 3 == 2 ? text[i] != ' ' : !is_hex_digit(text[i]))
            return false;
    return true;
}

EventKind kind_of(QStringView text)
{
    // Telemetry may say anything; only its tabs tell it from what a test writes.
    if (text.contains('\t'))
        return EventKind::Telemetry;
    for (const Beginning& row : BEGINNINGS)
        if (text.startsWith(QLatin1String(row.text)))
            return row.kind;
    return is_command(text) ? EventKind::Command : EventKind::Other;
}

bool read_change(const QString& text, EventLine& event)
{
    const int at = text.indexOf(BECAUSE);
    if (!text.startsWith(SWITCHING) || at < SWITCHING.size() || text.contains('\t'))
        return false;
    event.kind = EventKind::PhaseChange;
    event.phase = text.mid(SWITCHING.size(), at - SWITCHING.size());
    event.reason = text.mid(at + BECAUSE.size());
    return true;
}
}  // namespace

const TestPhaseTraits& traits_of(TestPhase phase)
{
    return PHASES[int(phase)];
}

TestPhase phase_of(const QString& text)
{
    for (const TestPhaseTraits& traits : PHASES) {
        const bool numbered = traits.phase == TestPhase::ReadyForDischarge;
        if (numbered ? text.startsWith(traits.text) : text == traits.text)
            return traits.phase;
    }
    return TestPhase::Unknown;
}

EventLine read_event_line(const QString& line)
{
    EventLine event;
    const int begin = begin_of_change(line);
    event.time = stamp_at(line, begin);
    if (!event.time.isValid() || line.size() <= begin + STAMP_LENGTH) {
        // What stands behind a line feed within a telemetry line.
        event.time = QDateTime();
        event.kind = line.contains('\t') ? EventKind::Telemetry : EventKind::Other;
        return event;
    }
    if (!read_change(line.mid(begin + STAMP_LENGTH + 1), event))
        event.kind = kind_of(QStringView(line).mid(begin + STAMP_LENGTH + 1));
    return event;
}
