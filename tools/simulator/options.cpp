#include "simulator/options.h"

#include "simulator/faults.h"

#include <QCommandLineParser>

#include <cmath>

namespace
{
struct NumberOption
{
    const char* name;
    const char* unit;
    const char* description;
    double Options::*member;
    double min;
    double max;
    bool whole;
    bool for_recordings;
};

constexpr NumberOption NUMBERS[] = {
    {"rate", "lines", "Lines a second; a recording otherwise keeps its own pace.", &Options::rate,
     0.001, 1000, false, true},
    {"speed", "factor", "Time lapse: the instrument's time runs this many times as fast.",
     &Options::speed, 0.001, 100000, false, true},
    {"id", "number", "The instrument's number.", &Options::id, -2147483648.0, 2147483647.0, true,
     false},
    {"delay", "lines", "Lines by which the state letter lags behind the state.", &Options::delay, 0,
     1000, true, false},
    {"cells", "count", "Cells in series.", &Options::cells, 1, 1000, true, false},
    {"capacity", "Ah", "Capacity of the pack.", &Options::capacity_ah, 0.001, 100000, false, false},
    {"charge", "percent", "State of charge at the start.", &Options::charge_percent, 0, 100, false,
     false},
    {"resistance", "milliohms", "Internal resistance of the pack.", &Options::resistance_milliohms,
     0, 100000, false, false},
    {"charger-current", "A", "Limit of the charger's current.", &Options::charger_amps, 0, 10000,
     false, false},
    {"charger-voltage", "V", "Limit of the charger's voltage, for each cell.",
     &Options::charger_volts_per_cell, 0, 100, false, false},
    {"linger", "seconds", "With --exit-with-stdin: stay until nobody has had the port for so long.",
     &Options::linger, 0, 3600, false, true},
    {"load", "A", "Current that the load draws.", &Options::load_amps, 0, 10000, false, false},
};

constexpr double MOST_LINES_PER_SECOND = 10000.0;

QString described(const NumberOption& option)
{
    return QString("%1 Default: %2.")
        .arg(option.description)
        .arg(Options().*option.member, 0, 'g', 10);
}

void declare_options(QCommandLineParser& parser)
{
    parser.setApplicationDescription(
        "A battery instrument on a pseudo-terminal. Prints the port's path, then sends telemetry "
        "and obeys\n"
        "commands. Faults are set by --fault or by lines on standard input.");
    for (const NumberOption& option : NUMBERS)
        parser.addOption({option.name, described(option), option.unit});
    parser.addOption({"link", "Keep a symbolic link to the port here.", "path"});
    parser.addOption({"record", "Keep a record here of what the instrument is told.", "path"});
    parser.addOption({"fault", "Start with this fault; may be given several times.", "text"});
    parser.addOption({"replay",
                      "Play this recording: an event log with telemetry, or a file of lines.",
                      "file"});
    parser.addOption({"exit-at-end", "End behind the last line of a recording."});
    parser.addOption({"exit-with-stdin", "End when standard input does."});
    parser.addOption({{"h", "help"}, "Show this text."});
    parser.addOption({{"v", "version"}, "Show the version."});
}

QString read_number(const NumberOption& option, const QString& text, Options& options)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    const bool fits = ok && value >= option.min && value <= option.max &&
                      (!option.whole || value == std::floor(value));
    if (fits) {
        options.*option.member = value;
        return {};
    }
    return QString("--%1: \"%2\" is not a %3 from %4 to %5.")
        .arg(option.name, text, option.whole ? "whole number" : "number",
             QString::number(option.min, 'g', 10), QString::number(option.max, 'g', 10));
}

QString read_numbers(const QCommandLineParser& parser, Options& options)
{
    for (const NumberOption& option : NUMBERS) {
        QString error = parser.isSet(option.name)
                            ? read_number(option, parser.value(option.name), options)
                            : QString();
        if (!error.isEmpty())
            return error;
    }
    const bool own_pace = parser.isSet("replay") && !parser.isSet("rate");
    if (!own_pace && options.rate * options.speed > MOST_LINES_PER_SECOND)
        return "--rate times --speed exceeds 10000 lines a second.";
    return {};
}

QString read_faults(const QCommandLineParser& parser, Options& options)
{
    options.faults = parser.values("fault");
    QString error;
    for (const QString& fault : options.faults)
        if (!check_fault(fault, error))
            return "--fault: " + error;
    return {};
}

QString check_recording(const QCommandLineParser& parser)
{
    if (!parser.isSet("replay"))
        return parser.isSet("exit-at-end") ? "--exit-at-end goes with --replay only." : "";
    for (const NumberOption& option : NUMBERS)
        if (!option.for_recordings && parser.isSet(option.name))
            return QString("--%1 does not go with --replay.").arg(option.name);
    return parser.isSet("fault") ? "--fault does not go with --replay." : "";
}

QString first_error(const QCommandLineParser& parser, Options& options)
{
    if (!parser.positionalArguments().isEmpty())
        return QString("\"%1\" is no option; --help lists them.")
            .arg(parser.positionalArguments().first());
    for (const char* name : {"link", "record", "replay"})
        if (parser.isSet(name) && parser.value(name).isEmpty())
            return QString("--%1 needs a path.").arg(name);
    QString error = read_numbers(parser, options);
    if (error.isEmpty())
        error = read_faults(parser, options);
    return error.isEmpty() ? check_recording(parser) : error;
}
}  // namespace

PackModel Options::pack() const
{
    PackModel pack;
    pack.cells = int(cells);
    pack.capacity_ah = capacity_ah;
    pack.state_of_charge = charge_percent / 100.0;
    pack.internal_resistance = resistance_milliohms / 1000.0;
    pack.charger_amps = charger_amps;
    pack.charger_volts_per_cell = charger_volts_per_cell;
    pack.load_amps = load_amps;
    return pack;
}

OptionsResult read_options(const QStringList& arguments, Options& options, QString& text)
{
    QCommandLineParser parser;
    declare_options(parser);
    const bool parsed = parser.parse(arguments);
    if (parsed && parser.isSet("help")) {
        text = parser.helpText() + "\nFaults:\n\n" + fault_help();
        return OptionsResult::Help;
    }
    if (parsed && parser.isSet("version")) {
        text = "kest-simulator " KEST_VERSION "\n";
        return OptionsResult::Help;
    }
    text = parsed ? first_error(parser, options) : parser.errorText();
    options.rate_given = parser.isSet("rate");
    options.link = parser.value("link");
    options.record = parser.value("record");
    options.recording = parser.value("replay");
    options.exit_at_end = parser.isSet("exit-at-end");
    options.exit_with_stdin = parser.isSet("exit-with-stdin");
    return text.isEmpty() ? OptionsResult::Run : OptionsResult::Bad;
}
