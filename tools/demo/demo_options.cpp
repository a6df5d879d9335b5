#include "demo/demo_options.h"

#include <QCommandLineParser>
#include <QDir>

namespace
{
constexpr double MOST_SPEED = 1000.0;

bool read_speed(const QString& text, double& speed)
{
    bool ok = false;
    const double number = text.toDouble(&ok);
    if (!ok || !(number >= 1.0 && number <= MOST_SPEED))
        return false;
    speed = number;
    return true;
}
}  // namespace

DemoStart read_demo_options(const QStringList& arguments, DemoOptions& options, QString& message)
{
    const QCommandLineOption speed("speed",
                                   "Time lapse: the clock and the instruments run N times as fast, "
                                   "1 to 1000 (default 60).",
                                   "N", "60");
    const QCommandLineOption unattended("unattended",
                                        "Runs a whole test of two cycles without a hand on it, "
                                        "leaves its logs and a screenshot in DIR, and ends.",
                                        "DIR");
    const QCommandLineOption help({"h", "help"}, "Shows this text.");
    const QCommandLineOption version({"v", "version"}, "Shows the version.");
    QCommandLineParser parser;
    parser.setApplicationDescription(
        "The Kest Battery Tester with simulated instruments, in time lapse. One test starts by "
        "itself, a second station waits for its Start, a third instrument for a station. Settings "
        "and logs are kept apart from those of the real program.");
    parser.addOptions({speed, unattended, help, version});

    if (!parser.parse(arguments)) {
        message = parser.errorText();
        return DemoStart::Refuse;
    }
    if (parser.isSet(help)) {
        message = parser.helpText();
        return DemoStart::Help;
    }
    if (parser.isSet(version)) {
        message = "kest-demo " KEST_VERSION "\n";
        return DemoStart::Help;
    }
    if (!parser.positionalArguments().isEmpty()) {
        message = "Unexpected argument: " + parser.positionalArguments().constFirst();
        return DemoStart::Refuse;
    }
    if (!read_speed(parser.value(speed), options.speed)) {
        message = "--speed takes a number from 1 to 1000, not '" + parser.value(speed) + "'.";
        return DemoStart::Refuse;
    }
    options.unattended_folder = parser.value(unattended);
    if (parser.isSet(unattended) && !QDir().mkpath(options.unattended_folder)) {
        message = "The folder '" + options.unattended_folder + "' cannot be made.";
        return DemoStart::Refuse;
    }
    return DemoStart::Run;
}
