#include "guard/guard_options.h"

#include <QCommandLineParser>

namespace
{
constexpr int LONGEST_FROZEN_S = 86400;
constexpr double MOST_SPEED = 1000.0;

const QCommandLineOption
    FROZEN("frozen",
           "The program counts as frozen when it has read nothing of what waits "
           "on its lines for so long, 1 to 86400 (default 60).",
           "seconds", "60");
const QCommandLineOption KILL_FROZEN({"k", "kill-frozen"},
                                     "Ends a frozen program and switches its instruments off.");
const QCommandLineOption OFF({"o", "off"},
                             "Switches the instruments on these ports off, now and by hand.");
const QCommandLineOption
    ALL("all", "With --off: listens for 5 seconds on every free port and switches off "
               "where an instrument speaks.");
const QCommandLineOption SPEED("speed",
                               "Time lapse, for simulated instruments: time runs so many times as "
                               "fast, 1 to 1000 (default 1).",
                               "factor", "1");
const QCommandLineOption HELP({"h", "help"}, "Shows this text.");
const QCommandLineOption VERSION({"v", "version"}, "Shows the version.");

void declare(QCommandLineParser& parser)
{
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    parser.setApplicationDescription("Starts the Kest Battery Tester and switches its instruments "
                                     "off if it dies: crashed, killed, "
                                     "out of\nmemory or without its display. As long as the "
                                     "program lives, its instruments are its "
                                     "own affair.");
    parser.addOptions({FROZEN, KILL_FROZEN, OFF, ALL, SPEED, HELP, VERSION});
    parser.addPositionalArgument("program", "The program to start, with its arguments.",
                                 "[--] program [arguments...]");
}

QString help_text(const QCommandLineParser& parser)
{
    return parser.helpText() +
           "\nkest-guard --off port...   switches the instruments on these ports off.\n"
           "kest-guard --off --all     switches off whatever instrument speaks on a free port.\n";
}

QString check_numbers(const QCommandLineParser& parser, GuardOptions& options)
{
    bool ok = false;
    options.frozen_seconds = parser.value(FROZEN).toInt(&ok);
    if (!ok || options.frozen_seconds < 1 || options.frozen_seconds > LONGEST_FROZEN_S)
        return QString("--frozen takes a whole number from 1 to 86400, not \"%1\".")
            .arg(parser.value(FROZEN));
    options.speed = parser.value(SPEED).toDouble(&ok);
    if (!ok || !(options.speed >= 1.0 && options.speed <= MOST_SPEED))
        return QString("--speed takes a number from 1 to 1000, not \"%1\".")
            .arg(parser.value(SPEED));
    return {};
}

QString check_what_to_do(const GuardOptions& options, int words, bool frozen_options)
{
    if (!options.off && options.all)
        return "--all goes with --off only.";
    if (options.off && frozen_options)
        return "--frozen and --kill-frozen go with a program only, not with --off.";
    if (options.off && options.all && words > 0)
        return "--off takes ports or --all, not both.";
    if (options.off && !options.all && words == 0)
        return "--off needs a port, such as ttyUSB0, or --all.";
    if (!options.off && words == 0)
        return "There is no program to start; --help tells how it is done.";
    return {};
}
}  // namespace

GuardStart read_guard_options(const QStringList& arguments, GuardOptions& options, QString& text)
{
    QCommandLineParser parser;
    declare(parser);
    if (!parser.parse(arguments)) {
        text = parser.errorText();
        return GuardStart::Refuse;
    }
    if (parser.isSet(HELP)) {
        text = help_text(parser);
        return GuardStart::Tell;
    }
    if (parser.isSet(VERSION)) {
        text = QString("kest-guard %1\n").arg(KEST_VERSION);
        return GuardStart::Tell;
    }
    options.kill_frozen = parser.isSet(KILL_FROZEN);
    options.off = parser.isSet(OFF);
    options.all = parser.isSet(ALL);
    const QStringList words = parser.positionalArguments();
    if (options.off)
        options.ports = words;
    else
        options.program_words = words.size();
    text = check_numbers(parser, options);
    if (text.isEmpty())
        text = check_what_to_do(options, words.size(), options.kill_frozen || parser.isSet(FROZEN));
    return text.isEmpty() ? GuardStart::Run : GuardStart::Refuse;
}
