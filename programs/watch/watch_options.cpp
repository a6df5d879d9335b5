#include "watch/watch_options.h"

#include <QCommandLineParser>

namespace
{
const QCommandLineOption
    QUIET("quiet", "An instrument without a row for so long counts as silent (default 30).",
          "seconds", "30");
const QCommandLineOption JSON("json", "With status: one document instead of lines.");
const QCommandLineOption HELP({"h", "help"}, "Shows this text.");
const QCommandLineOption VERSION({"v", "version"}, "Shows the version.");

void take_words(QStringList words, WatchOptions& options)
{
    if (words.value(0) == "status") {
        options.command = WatchCommand::Status;
        words.removeFirst();
    }
    options.folders = words;
}
}  // namespace

WatchOptions read_watch_options(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription("Follows the logs of running tests. It only reads.");
    parser.addOptions({QUIET, JSON, HELP, VERSION});
    parser.addPositionalArgument("folder", "Log folders; without one, the application's.",
                                 "[status] [folder...]");
    WatchOptions options;
    if (!parser.parse(arguments))
        options.error = parser.errorText() + ".";
    else if (parser.isSet(HELP))
        options.answer = parser.helpText();
    else if (parser.isSet(VERSION))
        options.answer = QString("kest-watch %1\n").arg(KEST_VERSION);
    bool ok = false;
    options.quiet_seconds = parser.value(QUIET).toInt(&ok);
    if (!ok || options.quiet_seconds < 1)
        options.error =
            QString("--quiet takes a whole number from 1, not \"%1\".").arg(parser.value(QUIET));
    options.json = parser.isSet(JSON);
    take_words(parser.positionalArguments(), options);
    return options;
}
