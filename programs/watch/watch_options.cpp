#include "watch/watch_options.h"

#include "watch/conf_file.h"
#include "watch/tells/mail_text.h"

#include <QCommandLineParser>
#include <QFile>
#include <QProcess>
#include <QUrl>

namespace
{
constexpr int DAY_S = 86400;
constexpr int WEEK_MIN = 10080;

/** Empty, or what is wrong with the value: "takes a number". */
using Take = QString (*)(const QString& value, WatchOptions& options);

struct OptionRow
{
    const char* letter;  ///< "" for none
    const char* name;
    const char* value;  ///< what it takes, for the help; "" for nothing
    const char* text;
    bool in_file;  ///< may stand in kest-watch.conf too
    Take take;
};

QString take_number(const QString& value, int least, int most, int& number)
{
    bool ok = false;
    const int read = value.toInt(&ok);
    if (!ok || read < least || read > most)
        return QString("takes a whole number from %1 to %2, not '%3'.")
            .arg(least)
            .arg(most)
            .arg(value);
    number = read;
    return {};
}

QString take_quiet(const QString& value, WatchOptions& options)
{
    return take_number(value, 1, DAY_S, options.quiet_seconds);
}

QString take_run(const QString& value, WatchOptions& options)
{
    if (QProcess::splitCommand(value).isEmpty())
        return "takes a command.";
    options.telling.commands << value;
    return {};
}

QString take_run_seconds(const QString& value, WatchOptions& options)
{
    return take_number(value, 1, DAY_S, options.telling.run_seconds);
}

QString take_mail(const QString& value, WatchOptions& options)
{
    if (!is_mail_address(value))
        return QString("takes an address as anna@example.org, not '%1'.").arg(value);
    options.telling.addresses << value;
    return {};
}

QString take_post(const QString& value, WatchOptions& options)
{
    const QUrl url(value);
    const bool web = url.scheme() == "http" || url.scheme() == "https";
    if (!url.isValid() || !web || url.host().isEmpty())
        return QString("takes an address as https://example.org/bench, not '%1'.").arg(value);
    options.telling.urls << value;
    return {};
}

QString take_remind(const QString& value, WatchOptions& options)
{
    return take_number(value, 0, WEEK_MIN, options.telling.remind_minutes);
}

QString take_quiet_hours(const QString& value, WatchOptions& options)
{
    if (read_quiet_hours(value, options.telling.quiet_hours))
        return {};
    return QString("takes two times of the day as 22-6 or 21:30-6, not '%1'.").arg(value);
}

QString take_no_desktop(const QString&, WatchOptions& options)
{
    options.telling.desktop = false;
    return {};
}

QString take_no_inhibit(const QString&, WatchOptions& options)
{
    options.telling.inhibits_sleep = false;
    return {};
}

QString take_json(const QString&, WatchOptions& options)
{
    options.json = true;
    return {};
}

QString take_check(const QString&, WatchOptions& options)
{
    options.command = WatchCommand::Check;
    return {};
}

const OptionRow OPTIONS[] = {
    {"", "quiet", "seconds",
     "An instrument without a row for so long counts as silent (default 30).", true, take_quiet},
    {"r", "run", "command",
     "Runs it for each event, which it gets as variables KEST_... and as JSON on its standard "
     "input. No shell is involved unless you write one.",
     true, take_run},
    {"", "run-seconds", "seconds", "How long a command may take (default 60).", true,
     take_run_seconds},
    {"m", "mail", "address", "Mails each event, by the sendmail of this computer.", true,
     take_mail},
    {"p", "post", "URL", "Posts each event to it as JSON.", true, take_post},
    {"", "remind", "minutes", "Tells again while something lasts, 0 for never again (default 60).",
     true, take_remind},
    {"", "quiet-hours", "from-to",
     "As 22-6: only silent instruments, failing tests, programs that are gone and the disk are "
     "told then; the rest waits.",
     true, take_quiet_hours},
    {"", "no-desktop", "", "Shows nothing on the desktop.", true, take_no_desktop},
    {"", "no-inhibit", "", "Lets the computer fall asleep while a test runs.", true,
     take_no_inhibit},
    {"", "check", "", "Tells what it would do, sends a test message by every way, and ends.", false,
     take_check},
    {"", "json", "", "With status: one document instead of lines.", false, take_json},
};

QStringList names_of(const OptionRow& row)
{
    QStringList names = {row.name};
    if (*row.letter != '\0')
        names.prepend(row.letter);
    return names;
}

void declare(QCommandLineParser& parser)
{
    parser.setApplicationDescription(
        "Follows the logs of running tests, tells whom it may concern, and keeps the computer "
        "awake. It only reads.\n\n"
        "kest-watch            follows until it is ended\n"
        "kest-watch status     one look: a line a test\n"
        "kest-watch --check    shows that its messages arrive");
    for (const OptionRow& row : OPTIONS)
        parser.addOption(QCommandLineOption(names_of(row), row.text, row.value));
    parser.addOption({{"h", "help"}, "Shows this text."});
    parser.addOption({{"v", "version"}, "Shows the version."});
    parser.addPositionalArgument("folder", "Log folders; without one, the application's.",
                                 "[status] [folder...]");
}

QString help_text(const QCommandLineParser& parser)
{
    return parser.helpText() +
           QString("\nThe same options, without the dashes, may stand in %1.\n"
                   "Ends with 0 if all is well, 1 if there is trouble, 2 if these arguments are "
                   "wrong.\n")
               .arg(conf_path());
}

/** Empty, or what is wrong with the line. */
QString take_conf_line(const ConfLine& line, WatchOptions& options)
{
    if (line.name == "folder" && !line.value.isEmpty()) {
        options.folders << line.value;
        return {};
    }
    for (const OptionRow& row : OPTIONS) {
        if (!row.in_file || line.name != row.name)
            continue;
        const bool takes_value = *row.value != '\0';
        if (takes_value == line.value.isEmpty())
            return QString("'%1' takes %2 value.").arg(line.name, takes_value ? "a" : "no");
        const QString wrong = row.take(line.value, options);
        return wrong.isEmpty() ? wrong : QString("'%1' %2").arg(line.name, wrong);
    }
    return QString("there is no setting '%1'.").arg(line.name);
}

/** Empty, or a sentence about the file. */
QString take_conf(const QString& path, WatchOptions& options)
{
    QFile file(path);
    if (!file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly))
        return QString("%1 cannot be read: %2.").arg(path, file.errorString());
    const QString wrong = take_settings(file.readAll(), options);
    return wrong.isEmpty() ? wrong : path + ", " + wrong;
}

QString take_options(const QCommandLineParser& parser, WatchOptions& options)
{
    for (const OptionRow& row : OPTIONS) {
        const QStringList values = *row.value != '\0' ? parser.values(row.name) : QStringList("");
        if (!parser.isSet(row.name))
            continue;
        for (const QString& value : values) {
            const QString wrong = row.take(value, options);
            if (!wrong.isEmpty())
                return QString("--%1 %2").arg(row.name, wrong);
        }
    }
    return {};
}

/** Empty, or what is wrong with the words beside the options. */
QString take_words(QStringList words, WatchOptions& options)
{
    const bool check = options.command == WatchCommand::Check;
    if (words.value(0) == "status") {
        options.command = WatchCommand::Status;
        words.removeFirst();
    }
    if (!words.isEmpty())
        options.folders = words;
    if (check && options.command == WatchCommand::Status)
        return "status and --check are two different things.";
    if (options.json && options.command != WatchCommand::Status)
        return "--json goes with status.";
    return {};
}
}  // namespace

QString take_settings(const QByteArray& content, WatchOptions& options)
{
    QList<ConfLine> lines;
    QString wrong;
    if (!read_conf(content, lines, wrong))
        return wrong;
    for (const ConfLine& line : lines) {
        wrong = take_conf_line(line, options);
        if (!wrong.isEmpty())
            return QString("line %1: %2").arg(line.number).arg(wrong);
    }
    return {};
}

WatchOptions read_watch_options(const QStringList& arguments, const QString& conf)
{
    QCommandLineParser parser;
    declare(parser);
    WatchOptions options;
    if (!parser.parse(arguments))
        options.error = parser.errorText();
    else if (parser.isSet("help"))
        options.answer = help_text(parser);
    else if (parser.isSet("version"))
        options.answer = QString("kest-watch %1\n").arg(KEST_VERSION);
    else
        options.error = take_conf(conf, options);
    if (!options.error.isEmpty() || !options.answer.isEmpty())
        return options;
    options.error = take_options(parser, options);
    if (options.error.isEmpty())
        options.error = take_words(parser.positionalArguments(), options);
    return options;
}
