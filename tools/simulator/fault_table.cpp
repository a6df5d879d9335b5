#include "simulator/faults.h"

#include "simulator/line_faults.h"
#include "simulator/simulated_instrument.h"

#include <algorithm>

namespace
{
using Instrument = SimulatedInstrument;
using Arguments = FaultArguments;

/** A fault that is set again takes the place of the one before. */
void add_line_fault(Instrument& instrument, const LineFault& fault)
{
    auto& all = instrument.faults.line_faults;
    const auto same = [&fault](const LineFault& other) {
        return qstrcmp(other.name, fault.name) == 0 && other.field == fault.field;
    };
    all.erase(std::remove_if(all.begin(), all.end(), same), all.end());
    all.push_back(fault);
}

void set_line_fault(Instrument& instrument, const Arguments& arguments, const FaultRow& row)
{
    LineFault fault = row.line_fault;
    fault.name = row.name;
    fault.lines.left = arguments.lines(0);
    add_line_fault(instrument, fault);
}

void set_wrong_letter(Instrument& instrument, const Arguments& arguments, const FaultRow& row)
{
    LineFault fault = row.line_fault;
    fault.name = row.name;
    fault.lines.left = arguments.lines(0);
    fault.text = arguments.words[1];
    add_line_fault(instrument, fault);
}

void set_field(Instrument& instrument, const Arguments& arguments, const FaultRow& row)
{
    LineFault fault = row.line_fault;
    fault.name = row.name;
    fault.field = arguments.words[0].toInt();
    fault.text = arguments.words[1];
    fault.lines.left = arguments.lines(2);
    add_line_fault(instrument, fault);
}

void clear(Instrument& instrument, const Arguments&, const FaultRow&)
{
    instrument.faults = FaultState();
    instrument.pack.load_connected = true;
    instrument.pack.protection_open = false;
}

const QVector<FaultRow> ROWS = {
    {FaultGroup::Text,
     "garbage",
     "[lines=1]",
     "Noise instead of a line: 1 to 60 bytes of any value but CR, LF and NUL, then the line end.",
     set_line_fault,
     {LineFaults::garbage}},
    {FaultGroup::Text,
     "six-fields",
     "[lines=1]",
     "The fifth field is missing.",
     set_line_fault,
     {LineFaults::six_fields}},
    {FaultGroup::Text,
     "eight-fields",
     "[lines=1]",
     "One more field, \"0\", before the fifth.",
     set_line_fault,
     {LineFaults::eight_fields}},
    {FaultGroup::Text,
     "empty-fields",
     "[lines=1]",
     "All seven fields are empty.",
     set_line_fault,
     {LineFaults::empty_fields}},
    {FaultGroup::Text,
     "letters",
     "[lines=1]",
     "Voltage and current read \"abc\".",
     set_line_fault,
     {LineFaults::numbers, 0, "abc"}},
    {FaultGroup::Text,
     "decimal-comma",
     "[lines=1]",
     "Voltage and current have a comma for the point.",
     set_line_fault,
     {LineFaults::decimal_comma}},
    {FaultGroup::Text,
     "inf",
     "[lines=1]",
     "Voltage and current read \"inf\".",
     set_line_fault,
     {LineFaults::numbers, 0, "inf"}},
    {FaultGroup::Text,
     "nan",
     "[lines=1]",
     "Voltage and current read \"nan\".",
     set_line_fault,
     {LineFaults::numbers, 0, "nan"}},
    {FaultGroup::Text,
     "1e308",
     "[lines=1]",
     "Voltage and current read \"1e308\".",
     set_line_fault,
     {LineFaults::numbers, 0, "1e308"}},
    {FaultGroup::Text,
     "no-id",
     "[lines=1]",
     "The sixth field is empty.",
     set_line_fault,
     {LineFaults::field, TelemetryLine::IdField, ""}},
    {FaultGroup::Text,
     "bare-id",
     "[lines=1]",
     "The sixth field reads \"ID=\".",
     set_line_fault,
     {LineFaults::field, TelemetryLine::IdField, "ID="}},
    {FaultGroup::Text,
     "big-id",
     "[lines=1]",
     "The sixth field reads \"ID=4294967303\", beyond 32 bits.",
     set_line_fault,
     {LineFaults::field, TelemetryLine::IdField, "ID=4294967303"}},
    {FaultGroup::Text,
     "wrong-letter",
     "[lines=1] [letter=X]",
     "The state letter reads so.",
     set_wrong_letter,
     {LineFaults::field, TelemetryLine::StateField, ""}},
    {FaultGroup::Text,
     "doubled-letter",
     "[lines=1]",
     "The state letter stands twice: \"OO\".",
     set_line_fault,
     {LineFaults::doubled_letter}},
    {FaultGroup::Text,
     "field",
     "<field> <text> [lines=1]",
     "The field, counted from 0, reads so.",
     set_field,
     {LineFaults::field}},
    {FaultGroup::Text,
     "lone-cr",
     "[lines=1]",
     "The line ends in CR without LF.",
     set_line_fault,
     {LineFaults::line_end, 0, "\r"}},
    {FaultGroup::Text,
     "lone-lf",
     "[lines=1]",
     "The line ends in LF without CR.",
     set_line_fault,
     {LineFaults::line_end, 0, "\n"}},
    {FaultGroup::Text,
     "lost-line-end",
     "[lines=1]",
     "The line has no end: the next one is glued to it.",
     set_line_fault,
     {LineFaults::line_end, 0, ""}},
    {FaultGroup::Text,
     "nul",
     "[lines=1]",
     "A NUL byte at the end of the first field.",
     set_line_fault,
     {LineFaults::stray_bytes, 0, QByteArray(1, '\0')}},
    {FaultGroup::Text,
     "nul-line-end",
     "[lines=1]",
     "A NUL byte before the line end.",
     set_line_fault,
     {LineFaults::line_end, 0, QByteArray("\0\r\n", 3)}},
    {FaultGroup::Text,
     "invalid-utf8",
     "[lines=1]",
     "The bytes C3 28 FF, which are no UTF-8, at the end of the first field.",
     set_line_fault,
     {LineFaults::stray_bytes, 0, "\xC3\x28\xFF"}},
    {FaultGroup::Text, "split-bytes", "[lines=1]", "Each byte of the line is written by itself.",
     [](Instrument& i, const Arguments& a, const FaultRow&) {
         i.faults.split_bytes = {a.lines(0)};
     }},
    {FaultGroup::Text, "merge", "[count=2]", "So many lines are held back and written at once.",
     [](Instrument& i, const Arguments& a, const FaultRow&) {
         i.faults.merge_lines = a.lines(0);
     }},
    {FaultGroup::Text, "babble", "<bytes>",
     "So many digits without a line end, ahead of whatever comes next.",
     [](Instrument& i, const Arguments& a, const FaultRow&) {
         i.faults.babble_bytes = a.lines(0);
     }},
    {FaultGroup::Text, "echo", "", "All bytes received come back in front of the next line.",
     [](Instrument& i, const Arguments&, const FaultRow&) {
         i.faults.echo = true;
     }},

    {FaultGroup::Time, "silence", "<seconds>",
     "The lines of this time are lost; commands are obeyed.",
     [](Instrument& i, const Arguments& a, const FaultRow&) {
         i.faults.silent_seconds = a.number(0);
     }},
    {FaultGroup::Time, "burst", "<time>",
     "The lines of this time are held back and written at once, with the first line behind it.",
     [](Instrument& i, const Arguments& a, const FaultRow&) {
         i.faults.burst_seconds = a.number(0);
     }},
    {FaultGroup::Time, "slow", "<count>", "One line in the time of so many.",
     [](Instrument& i, const Arguments& a, const FaultRow&) {
         i.faults.slow = a.lines(0);
     }},
    {FaultGroup::Time, "fast", "<count>", "So many lines, written at once, in the time of one.",
     [](Instrument& i, const Arguments& a, const FaultRow&) {
         i.faults.fast = a.lines(0);
     }},

    {FaultGroup::Instrument, "ignore-next", "[count=1]",
     "The next so many state commands are ignored.",
     [](Instrument& i, const Arguments& a, const FaultRow&) {
         i.faults.ignored_commands = a.lines(0);
     }},
    {FaultGroup::Instrument, "ignore-commands", "[lines=forever]",
     "State commands are ignored until so many lines have gone out.",
     [](Instrument& i, const Arguments& a, const FaultRow&) {
         i.faults.deaf = {a.lines(0)};
     }},
    {FaultGroup::Instrument, "late-commands", "<delay>",
     "State commands are obeyed so many lines late.",
     [](Instrument& i, const Arguments& a, const FaultRow&) {
         i.faults.command_delay = a.lines(0);
     }},
    {FaultGroup::Instrument, "stuck-state", "<letter> [lines=forever]",
     "The state letter reads so, whatever the state.",
     [](Instrument& i, const Arguments& a, const FaultRow&) {
         i.faults.letter = a.words[0][0];
         i.faults.stuck_letter = {a.lines(1)};
     }},
    {FaultGroup::Instrument, "id", "<id>", "The instrument's number is this from now on.",
     [](Instrument& i, const Arguments& a, const FaultRow&) {
         i.id = a.words[0].toInt();
     }},
    {FaultGroup::Instrument, "restart", "[seconds=2]",
     "Goes off, and is silent and deaf for this time.",
     [](Instrument& i, const Arguments& a, const FaultRow&) {
         i.restart(a.number(0));
     }},
    {FaultGroup::Instrument, "bootloader", "",
     "Goes off and is silent until the reset sequence restarts it.",
     [](Instrument& i, const Arguments&, const FaultRow&) {
         i.enter_bootloader();
     }},
    {FaultGroup::Instrument, "bootloader-noise", "",
     "As bootloader, but with noise without line ends instead of silence.",
     [](Instrument& i, const Arguments&, const FaultRow&) {
         i.faults.bootloader_noise = true;
         i.enter_bootloader();
     }},
    {FaultGroup::Instrument, "no-load", "", "The load is missing: a discharge draws no current.",
     [](Instrument& i, const Arguments&, const FaultRow&) {
         i.pack.load_connected = false;
     }},
    {FaultGroup::Instrument, "load", "", "The load is back.",
     [](Instrument& i, const Arguments&, const FaultRow&) {
         i.pack.load_connected = true;
     }},
    {FaultGroup::Instrument, "trip-protection", "",
     "The pack's protection opens: no volts and no amps until it is charged.",
     [](Instrument& i, const Arguments&, const FaultRow&) {
         i.pack.protection_open = true;
     }},
    {FaultGroup::Instrument, "current-after-off", "<amps> [lines=forever]",
     "This current is read while the instrument is off.",
     [](Instrument& i, const Arguments& a, const FaultRow&) {
         i.faults.residual_amps = a.number(0);
         i.faults.residual_current = {a.lines(1)};
     }},
    {FaultGroup::Instrument, "voltage-after-off", "<volts> [lines=forever]",
     "Off after a discharge, the voltage is that under load plus this: 0 no rise, -0.2 a fall.",
     [](Instrument& i, const Arguments& a, const FaultRow&) {
         i.faults.rebound_volts = a.number(0);
         i.faults.rebound = {a.lines(1)};
     }},

    {FaultGroup::Port, "vanish", "[seconds=forever]", "The port is gone for this time.",
     [](Instrument& i, const Arguments& a, const FaultRow&) {
         i.faults.absent_seconds = a.number(0);
     }},
    {FaultGroup::Port, "return", "", "The port is back; with --link, under the name it had.",
     [](Instrument& i, const Arguments&, const FaultRow&) {
         i.faults.absent_seconds = 0.0;
     }},

    {FaultGroup::General, "clear", "",
     "Ends all faults. A changed number stays, and only the reset sequence ends a bootloader.",
     clear},
};
}  // namespace

const QVector<FaultRow>& fault_rows()
{
    return ROWS;
}
