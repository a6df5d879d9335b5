#include "doctor/doctor_options.h"

#include <QCommandLineParser>
#include <QFileInfo>

namespace
{
constexpr int MOST_SECONDS = 86400;

const QCommandLineOption
    LISTEN({"l", "listen"}, "Shows what an instrument says on PORT, and what it means.", "PORT");
const QCommandLineOption SECONDS({"s", "seconds"}, "How long, 1 to 86400 (default 10).", "N", "10");
const QCommandLineOption NO_LISTEN("no-listen", "Opens no port at all.");
const QCommandLineOption JSON({"j", "json"}, "Prints one JSON document instead of sentences.");
const QCommandLineOption
    ROOT("root",
         "Looks at a machine whose files lie below DIR: its /sys, /proc, /dev, "
         "/run and /etc.",
         "DIR", "/");
const QCommandLineOption HELP({"h", "help"}, "Shows this text.");
const QCommandLineOption VERSION({"v", "version"}, "Shows the version.");

/** What is wrong with the arguments; empty for nothing. */
QString take_over(const QCommandLineParser& parser, DoctorOptions& options)
{
    if (!parser.positionalArguments().isEmpty())
        return "Unexpected argument: " + parser.positionalArguments().constFirst();
    options.listen_port = parser.value(LISTEN);
    if (parser.isSet(LISTEN) && options.listen_port.isEmpty())
        return "--listen takes the name of a port.";
    if (parser.isSet(SECONDS) && !parser.isSet(LISTEN))
        return "--seconds goes with --listen.";
    if (parser.isSet(NO_LISTEN) && parser.isSet(LISTEN))
        return "--no-listen and --listen contradict each other.";
    bool ok = false;
    options.seconds = parser.value(SECONDS).toInt(&ok);
    if (!ok || options.seconds < 1 || options.seconds > MOST_SECONDS)
        return QString("--seconds takes a whole number from 1 to %1, not '%2'.")
            .arg(MOST_SECONDS)
            .arg(parser.value(SECONDS));
    options.root = parser.value(ROOT);
    if (!QFileInfo(options.root).isDir())
        return QString("--root takes a folder, which '%1' is not.").arg(options.root);
    options.listens = !parser.isSet(NO_LISTEN);
    options.json = parser.isSet(JSON);
    return {};
}
}  // namespace

DoctorStart read_doctor_options(const QStringList& arguments, DoctorOptions& options,
                                QString& message)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Tells why no instrument shows, and what else will cost a test: sentences, the worst "
        "first, "
        "each with the command that mends it. Reads only; no port that a program holds is opened, "
        "and nothing is sent to any.");
    parser.addOptions({LISTEN, SECONDS, NO_LISTEN, JSON, ROOT, HELP, VERSION});
    if (!parser.parse(arguments)) {
        message = parser.errorText();
        return DoctorStart::Refuse;
    }
    if (parser.isSet(HELP)) {
        message = parser.helpText() + "\nEnds with 0 if all is well, 1 if there is trouble, 2 if "
                                      "these arguments are wrong.\n";
        return DoctorStart::Tell;
    }
    if (parser.isSet(VERSION)) {
        message = "kest-doctor " KEST_VERSION "\n";
        return DoctorStart::Tell;
    }
    message = take_over(parser, options);
    return message.isEmpty() ? DoctorStart::Run : DoctorStart::Refuse;
}
