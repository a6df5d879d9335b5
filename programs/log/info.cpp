#include "log/info.h"

#include "common/date_time.h"
#include "common/time_span.h"
#include "programs/common/terminal.h"
#include "programs/common/text_table.h"
#include "log/log_json.h"
#include "log/place.h"
#include "records/log_check.h"

namespace
{
QString fixed(double value, int decimals)
{
    return QString::number(value, 'f', decimals);
}

/** Volts of a section; it has none without rows. */
QString shown_volts(const Section& section, double volts)
{
    return section.count.rows > 0 ? fixed(volts, 2) : QString("?");
}

QString shown_time(const QDateTime& time)
{
    return time.isValid() ? time.toString(Time::ISO_8601_DATE_TIME_FORMAT) : QString("?");
}

QString section_name(const Section& section)
{
    return QString("%1 %2").arg(kind_name(section.kind)).arg(section.number);
}

QString head_text(const LogFile& file)
{
    QString text = shown(file.path) + '\n';
    const auto add = [&text](const char* label, const QString& value) {
        text += QString("  %1 %2\n").arg(label, -14).arg(shown(value));
    };
    add("battery", file.battery);
    add("serial number", file.serial_number);
    add("generation", generation_name(file.generation));
    add("loads", file.accepted ? "yes" : "no: " + place_of(file.refusal));
    const QString end = file.events.end_text();
    add("test", !file.events.exists ? "no event log tells" : end.isEmpty() ? "not known" : end);
    if (file.repeated_sections() > 0)
        add("repeated",
            QString("%1 sections have the number of the one before").arg(file.repeated_sections()));
    return text;
}

QString sections_text(const LogFile& file)
{
    TextTable table({"section", ">line", "start", ">duration (s)", ">rows", ">rate (1/s)", ">gaps",
                     ">gaps (s)", ">clock steps", ">out of order", ">first (V)", ">lowest (V)",
                     ">last (V)"});
    for (const Section& section : file.sections) {
        const RowCount& count = section.count;
        table.add(
            {section_name(section), QString::number(section.line), shown_time(section.start),
             fixed(count.last_seconds, 1), QString::number(count.rows), fixed(count.rate(), 3),
             QString::number(count.gap_count), fixed(count.gap_seconds, 1),
             QString::number(count.clock_steps), QString::number(count.rows_out_of_order),
             shown_volts(section, section.first_volts), shown_volts(section, section.lowest_volts),
             shown_volts(section, section.last_volts)});
    }
    return table.text("  ");
}

/** The heads of the other generation do not tell it. */
const char* const UNTOLD = "?";

QString yes_or_no(bool flag)
{
    return flag ? "yes" : "no";
}

QStringList parameters_row(const Section& section, LogGeneration generation)
{
    const TestParameters& parameters = section.parameters;
    const bool current = generation == LogGeneration::Current;
    const bool interval = current && parameters.measure_internal_resistance;
    return {section_name(section),
            QString::number(parameters.max_charge_time / 3600.0),
            current ? yes_or_no(parameters.detect_full_charge) : UNTOLD,
            QString::number(parameters.low_voltage_cutoff),
            yes_or_no(parameters.prompt_to_discharge),
            QString::number(parameters.final_voltage),
            current ? yes_or_no(parameters.measure_internal_resistance) : UNTOLD,
            interval ? QString::number(parameters.internal_resistance_test_interval_ah) : UNTOLD,
            current ? QString() : QString::number(parameters.number_of_cycles)};
}

QString parameters_text(const LogFile& file)
{
    TextTable table({"section", ">max charge (h)", "detect full", ">cutoff (V)", "prompt",
                     ">final (V)", "resistance", ">interval (Ah)",
                     file.generation == LogGeneration::Older ? ">cycles" : ""});
    for (const Section& section : file.sections)
        table.add(parameters_row(section, file.generation));
    return table.text("  ");
}

QString cycles_text(const LogFile& file)
{
    TextTable table({"cycle", "start", ">duration (s)", ">Ah", ">Wh loaded", ">Wh live", ">+/- Wh",
                     ">Wh held", ">resistances", ">mean (mOhm)", ">spread (mOhm)"});
    for (const Cycle& cycle : file.cycles) {
        const Section& section = file.sections[cycle.section];
        const Resistance& resistance = cycle.resistance;
        const bool measured = resistance.count > 0;
        table.add({QString::number(section.number), shown_time(section.start),
                   fixed(section.count.last_seconds, 1), fixed(cycle.amp_hours, 3),
                   fixed(cycle.watt_hours_loaded, 3), fixed(cycle.watt_hours_live, 3),
                   fixed(cycle.watt_hours_error, 3), fixed(cycle.watt_hours_held, 3),
                   QString::number(resistance.count), measured ? fixed(resistance.mean, 1) : "?",
                   measured ? fixed(resistance.spread, 1) : "?"});
    }
    return table.text("  ");
}

QString gaps_text(const LogFile& file)
{
    TextTable table({"gap in", ">line", ">from (s)", ">length (s)", "because of"});
    bool any = false;
    for (const Section& section : file.sections)
        for (const Gap& gap : section.count.gaps) {
            any = true;
            const QString reason = gap_reason(file.events, section, gap);
            table.add({section_name(section), QString::number(gap.line), fixed(gap.begin, 1),
                       fixed(gap.seconds, 1), reason.isEmpty() ? "?" : reason});
        }
    return any ? "\n" + table.text("  ") : QString();
}

QString steps_text(const LogFile& file)
{
    TextTable table({"clock set in", ">line", ">by (s)"});
    bool any = false;
    for (const Section& section : file.sections)
        for (const ClockStep& step : section.count.steps) {
            any = true;
            table.add({section_name(section), QString::number(step.line), fixed(step.seconds, 1)});
        }
    return any ? "\n" + table.text("  ") : QString();
}

QString info_text(const LogFile& file)
{
    QString text = head_text(file);
    if (!file.sections.isEmpty())
        text += "\n" + sections_text(file) + "\n" + parameters_text(file);
    if (!file.cycles.isEmpty())
        text += "\n" + cycles_text(file);
    return text + gaps_text(file) + steps_text(file);
}

qint64 rows_of(const LogFile& file)
{
    qint64 rows = 0;
    for (const Section& section : file.sections)
        rows += section.count.rows;
    return rows;
}

QString end_name(const LogFile& file)
{
    switch (file.events.end()) {
    case TestEnd::Done:
        return "done";
    case TestEnd::Unfinished:
        return "unfinished";
    case TestEnd::Unknown:
        break;
    }
    return "?";
}

QString in_columns(const QStringList& values, int widest_name)
{
    constexpr int WIDTHS[] = {-20, -12, 7, 5, 9, 10, 10, 10};
    QString text = values[0].leftJustified(widest_name);
    for (int i = 0; i < 8; ++i)
        text += "  " + QString("%1").arg(values[i + 1], WIDTHS[i]);
    return text + "  " + values[9] + '\n';
}

QString info_line(const LogFile& file, int widest_name)
{
    double watt_hours = 0.0;
    qint64 gaps = 0;
    for (const Cycle& cycle : file.cycles)
        watt_hours += cycle.watt_hours_live;
    for (const Section& section : file.sections)
        gaps += section.count.gap_count;
    return in_columns({shown(file.path), shown(file.battery), shown(file.serial_number),
                       generation_name(file.generation), file.accepted ? "yes" : "no",
                       QString::number(file.cycles.size()), fixed(file.amp_hours(), 3),
                       fixed(watt_hours, 3), QString::number(rows_of(file)),
                       QString("%1, gaps: %2").arg(end_name(file)).arg(gaps)},
                      widest_name);
}
}  // namespace

QString info_titles(int widest_name)
{
    return in_columns(
        {"file", "battery", "serial", "gen.", "loads", "cycles", "Ah", "Wh live", "rows", "test"},
        widest_name);
}

Outcome info_of(const QString& path, int widest_name)
{
    LogFile file;
    if (!summarize_log(path, file))
        return Outcome::failure(path, not_readable(path, file.refusal.reason));
    Outcome outcome;
    outcome.text = widest_name > 0 ? info_line(file, widest_name) : info_text(file);
    outcome.json = info_json(file);
    outcome.code = file.accepted ? EXIT_GOOD : EXIT_SOMETHING_TO_TELL;
    return outcome;
}
