#include "log/options.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <thread>

namespace
{
struct CommandName
{
    const char* name;
    Command command;
    const char* text;
};

constexpr CommandName COMMANDS[] = {
    {"info", Command::Info, "what is in it"},
    {"check", Command::Check, "would the application load it? if not: line, column, reason"},
    {"repair", Command::Repair, "a mended copy beside it, and what was left out"},
    {"export", Command::Export, "its readings as a table, for other programs"},
};

struct FormatName
{
    const char* name;
    Format format;
};

constexpr FormatName FORMATS[] = {
    {"csv", Format::Csv},
    {"xlsx", Format::Xlsx},
    {"bdf", Format::Bdf},
    {"json", Format::Json},
};

bool exports(Command command)
{
    return command == Command::Export;
}

bool makes_files(Command command)
{
    return command == Command::Repair || command == Command::Export;
}

/** An option that would do nothing for the other commands. */
struct Belonging
{
    const char* option;
    bool (*has)(Command command);
    const char* sentence;
};

constexpr Belonging BELONGINGS[] = {
    {"format", exports, "--format belongs to export."},
    {"zone", exports, "--zone belongs to export."},
    {"to", makes_files, "--to belongs to repair and export."},
    {"force", makes_files, "--force belongs to repair and export."},
};

QString description()
{
    QString text = "Checks, mends, explains and exports the data logs of the Kest Battery Tester.\n"
                   "It writes into no log, and needs no display.\n\nCommands:\n";
    for (const CommandName& command : COMMANDS)
        text += QString("  %1 %2\n").arg(command.name, -8).arg(command.text);
    return text + "\nExit status: 0 all is well, 1 there is something to tell, 2 wrong arguments.";
}

void add_options(QCommandLineParser& parser)
{
    parser.setApplicationDescription(description());
    parser.addPositionalArgument("command", "info, check, repair or export");
    parser.addPositionalArgument("FILE", "Data logs, folders with such, or patterns like '*.csv'",
                                 "FILE...");
    parser.addOptions({
        {{"f", "format"}, "For export: csv, xlsx, bdf or json.", "FORMAT"},
        {{"r", "recursive"}, "Folders with all that lies below them."},
        {{"t", "to"}, "For repair and export: the folder for what is made.", "DIR"},
        {"zone",
         "For export: the time zone of the logs, as Europe/Berlin; the system's if not given.",
         "ZONE"},
        {"jobs", "Logs worked on at a time; one for each processor if not given.", "N"},
        {"force", "For repair and export: replace files that exist."},
        {"json", "For info, check and repair: one JSON document in place of text."},
    });
    parser.addHelpOption();
    parser.addVersionOption();
}

Command command_of(const QString& name)
{
    for (const CommandName& command : COMMANDS)
        if (name == command.name)
            return command.command;
    return Command::None;
}

Format format_of(const QString& name)
{
    for (const FormatName& format : FORMATS)
        if (name == format.name)
            return format.format;
    return Format::None;
}

/** Empty if the values can be used. */
QString take_values(const QCommandLineParser& parser, Options& options)
{
    options.recursive = parser.isSet("recursive");
    options.force = parser.isSet("force");
    options.json = parser.isSet("json");
    options.to = parser.value("to");
    options.jobs = qMax(1, int(std::thread::hardware_concurrency()));
    if (parser.isSet("jobs")) {
        bool ok = false;
        options.jobs = parser.value("jobs").toInt(&ok);
        if (!ok || options.jobs < 1 || options.jobs > 64)
            return "--jobs takes a number from 1 to 64.";
    }
    if (parser.isSet("zone")) {
        options.zone = QTimeZone(parser.value("zone").toUtf8());
        if (!options.zone.isValid())
            return QString("There is no time zone '%1'.").arg(parser.value("zone"));
    }
    if (parser.isSet("format")) {
        options.format = format_of(parser.value("format"));
        if (options.format == Format::None)
            return QString("There is no format '%1'; csv, xlsx, bdf and json are known.")
                .arg(parser.value("format"));
    }
    return QString();
}

/** Empty if the options fit the command. */
QString check_command(const QCommandLineParser& parser, const Options& options)
{
    const QStringList arguments = parser.positionalArguments();
    if (arguments.isEmpty())
        return "A command is missing: info, check, repair or export.";
    if (options.command == Command::None)
        return QString("There is no command '%1'; info, check, repair and export are known.")
            .arg(arguments[0]);
    if (options.files.isEmpty())
        return "A file is missing.";
    if (exports(options.command) && options.format == Format::None)
        return "export needs --format csv, xlsx, bdf or json.";
    if (exports(options.command) && options.json)
        return "--json is for info, check and repair; export has --format json.";
    for (const Belonging& row : BELONGINGS)
        if (parser.isSet(row.option) && !row.has(options.command))
            return row.sentence;
    return QString();
}
}  // namespace

Options read_options(const QStringList& arguments)
{
    QCommandLineParser parser;
    add_options(parser);
    Options options;
    if (!parser.parse(arguments)) {
        options.error = parser.errorText();
        return options;
    }
    if (parser.isSet("help")) {
        options.answer = parser.helpText();
        return options;
    }
    if (parser.isSet("version")) {
        options.answer = QCoreApplication::applicationName() + ' ' +
                         QCoreApplication::applicationVersion() + '\n';
        return options;
    }
    const QStringList words = parser.positionalArguments();
    options.error = take_values(parser, options);
    options.command = words.isEmpty() ? Command::None : command_of(words[0]);
    options.files = words.mid(1);
    if (options.error.isEmpty())
        options.error = check_command(parser, options);
    return options;
}
