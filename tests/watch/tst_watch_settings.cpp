#include "support/test_files.h"
#include "support/test_program.h"
#include "watch/conf_file.h"
#include "watch/watch_options.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

/** The command line, kest-watch.conf and what they mean. */
class WatchSettingsTest : public QObject
{
    Q_OBJECT

private slots:
    void wrong_arguments_are_told_data();
    void wrong_arguments_are_told();
    void a_wrong_file_is_told_with_its_line_data();
    void a_wrong_file_is_told_with_its_line();
    void the_file_is_read_first();
    void what_is_not_given_is_as_the_manual_says();
    void quiet_hours_data();
    void quiet_hours();
    void quiet_hours_over_a_day_data();
    void quiet_hours_over_a_day();
    void the_file_that_comes_along_changes_nothing_and_names_all();
    void help_manual_and_completion_name_the_same_options();
};

namespace
{
WatchOptions read(const QStringList& arguments, const QByteArray& conf = QByteArray())
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("kest-watch.conf");
    if (!conf.isEmpty() && !write_file(path, conf))
        qFatal("The file cannot be written.");
    WatchOptions options = read_watch_options(QStringList("kest-watch") + arguments, path);
    options.error.replace(path, "FILE");
    return options;
}
}  // namespace

void WatchSettingsTest::wrong_arguments_are_told_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("complaint");
    const auto row = [](const char* name, const QStringList& arguments, const char* complaint) {
        QTest::newRow(name) << arguments << QString(complaint);
    };
    row("no such option", {"--loud"}, "Unknown option 'loud'.");
    row("no value", {"--mail"}, "Missing value after '--mail'.");
    row("not quiet", {"--quiet", "soon"},
        "--quiet takes a whole number from 1 to 86400, not 'soon'.");
    row("never quiet", {"--quiet", "0"}, "--quiet takes a whole number from 1 to 86400, not '0'.");
    row("no command", {"--run", " "}, "--run takes a command.");
    row("no time", {"--run-seconds", "0"},
        "--run-seconds takes a whole number from 1 to 86400, not '0'.");
    row("an option as address", {"--mail", "-bs"},
        "--mail takes an address as anna@example.org, not '-bs'.");
    row("two lines as address", {"--mail", "anna@example.org\nBcc: all@example.org"},
        "--mail takes an address as anna@example.org, not 'anna@example.org\nBcc: "
        "all@example.org'.");
    row("two addresses", {"--mail", "a@example.org,b@example.org"},
        "--mail takes an address as anna@example.org, not 'a@example.org,b@example.org'.");
    row("not the web", {"--post", "file:///etc/passwd"},
        "--post takes an address as https://example.org/bench, not 'file:///etc/passwd'.");
    row("no host", {"--post", "https:///bench"},
        "--post takes an address as https://example.org/bench, not 'https:///bench'.");
    row("rarely", {"--remind", "10081"},
        "--remind takes a whole number from 0 to 10080, not '10081'.");
    row("all day", {"--quiet-hours", "6-6"},
        "--quiet-hours takes two times of the day as 22-6 or 21:30-6, not '6-6'.");
    row("json of nothing", {"--json"}, "--json goes with status.");
    row("two things", {"--check", "status"}, "status and --check are two different things.");
}

void WatchSettingsTest::wrong_arguments_are_told()
{
    QFETCH(QStringList, arguments);
    QTEST(read(arguments).error, "complaint");
}

void WatchSettingsTest::a_wrong_file_is_told_with_its_line_data()
{
    QTest::addColumn<QByteArray>("conf");
    QTest::addColumn<QString>("complaint");
    const auto row = [](const char* name, const char* conf, const char* complaint) {
        QTest::newRow(name) << QByteArray(conf) << QString(complaint);
    };
    row("no such setting", "# all\n\nremnd = 3\n", "FILE, line 3: there is no setting 'remnd'.");
    row("not of the file", "check\n", "FILE, line 1: there is no setting 'check'.");
    row("no number", "remind = 60\r\nquiet = x\r\n",
        "FILE, line 2: 'quiet' takes a whole number from 1 to 86400, not 'x'.");
    row("no value", "mail =\n", "FILE, line 1: 'mail' takes a value.");
    row("no value at all", "mail\n", "FILE, line 1: 'mail' takes a value.");
    row("a value too much", "no-desktop = yes\n", "FILE, line 1: 'no-desktop' takes no value.");
    row("not a setting", "remind: 60\n", "FILE, line 1: a setting is written as 'name = value'.");
    row("with dashes", "--remind = 60\n", "FILE, line 1: a setting is written as 'name = value'.");
    row("a section", "[watch]\n", "FILE, line 1: a setting is written as 'name = value'.");
    row("not UTF-8", "remind = 60\nrun = \xFF\n", "FILE, line 2: is not UTF-8 text.");
}

void WatchSettingsTest::a_wrong_file_is_told_with_its_line()
{
    QFETCH(QByteArray, conf);
    QTEST(read({}, conf).error, "complaint");
}

void WatchSettingsTest::the_file_is_read_first()
{
    const QByteArray conf = "\xEF\xBB\xBF# who\n  mail = anna@example.org \n"
                            "run=beep --loud \"two words\" # not a comment\n"
                            "post = https://example.org/#bench\n"
                            "remind = 30\nquiet-hours = 22-6\nquiet = 40\nno-desktop\n"
                            "folder = /logs/one\nfolder = /logs/two";
    const WatchOptions alone = read({}, conf);
    QCOMPARE(alone.error, QString());
    QCOMPARE(alone.folders, QStringList({"/logs/one", "/logs/two"}));
    QCOMPARE(alone.telling.commands, QStringList("beep --loud \"two words\" # not a comment"));
    QCOMPARE(alone.telling.urls, QStringList("https://example.org/#bench"));
    QCOMPARE(alone.quiet_seconds, 40);
    QCOMPARE(alone.telling.quiet_hours.from, QTime(22, 0));
    QVERIFY(!alone.telling.desktop);

    const WatchOptions both =
        read({"--remind", "10", "-m", "bert", "--no-inhibit", "/logs/three"}, conf);
    QCOMPARE(both.error, QString());
    QCOMPARE(both.telling.remind_minutes, 10);
    QCOMPARE(both.telling.addresses, QStringList({"anna@example.org", "bert"}));
    QCOMPARE(both.folders, QStringList("/logs/three"));
    QVERIFY(!both.telling.inhibits_sleep);
}

void WatchSettingsTest::what_is_not_given_is_as_the_manual_says()
{
    const WatchOptions options = read({});
    QCOMPARE(options.error, QString());
    QCOMPARE(int(options.command), int(WatchCommand::Follow));
    QCOMPARE(options.quiet_seconds, 30);
    QCOMPARE(options.telling.remind_minutes, 60);
    QCOMPARE(options.telling.run_seconds, 60);
    QVERIFY(options.telling.desktop);
    QVERIFY(options.telling.inhibits_sleep);
    QVERIFY(!options.telling.quiet_hours.from.isValid());
    QCOMPARE(int(read({"status", "--json", "/logs"}).command), int(WatchCommand::Status));
    QCOMPARE(read({"status", "/logs"}).folders, QStringList("/logs"));
    QCOMPARE(int(read({"--check"}).command), int(WatchCommand::Check));
}

void WatchSettingsTest::quiet_hours_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("meaning");
    add_row("over midnight", "22-6", "22:00 06:00");
    add_row("by day", "08-17", "08:00 17:00");
    add_row("with minutes", "21:30-6:05", "21:30 06:05");
    add_row("until midnight", "20-24", "20:00 00:00");
    add_row("no such hour", "25-6", "");
    add_row("no such minute", "22:60-6", "");
    add_row("midnight to the minute", "20-24:00", "20:00 00:00");
    add_row("behind midnight", "20-24:30", "");
    add_row("one", "22", "");
    add_row("three", "22-6-7", "");
    add_row("a blank", "22 - 6", "");
    add_row("a line more", "22-6\n", "");
    add_row("other digits", "\u0662\u0662-\u0666", "");
}

void WatchSettingsTest::quiet_hours()
{
    QFETCH(QString, text);
    QuietHours hours;
    const bool good = read_quiet_hours(text, hours);
    QTEST(good ? hours.from.toString("HH:mm ") + hours.to.toString("HH:mm") : QString(), "meaning");
}

void WatchSettingsTest::quiet_hours_over_a_day_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("minutes");
    add_row("over midnight", "22-6", "00:00-05:59 22:00-23:59");
    add_row("by day", "12:30-13", "12:30-12:59");
    add_row("until midnight", "23-0", "23:00-23:59");
    add_row("none", "", "");
}

void WatchSettingsTest::quiet_hours_over_a_day()
{
    QFETCH(QString, text);
    QuietHours hours;
    QVERIFY(text.isEmpty() || read_quiet_hours(text, hours));
    const auto quiet = [&](int minute) {
        return minute >= 0 && minute < 1440 && hours.hold(QTime(0, 0).addSecs(minute * 60));
    };
    QStringList spans;
    for (int minute = 0; minute < 1440; ++minute) {
        const QString time = QTime(0, 0).addSecs(minute * 60).toString("HH:mm");
        if (quiet(minute) && !quiet(minute - 1))
            spans << time;
        if (quiet(minute) && !quiet(minute + 1))
            spans.last() += "-" + time;
    }
    QTEST(spans.join(' '), "minutes");
}

void WatchSettingsTest::the_file_that_comes_along_changes_nothing_and_names_all()
{
    const QByteArray file = content_of(source_file("packaging/kest-watch.conf"));
    for (const QByteArray& line : file.split('\n'))
        QVERIFY2(line.isEmpty() || line.startsWith('#'), line.constData());
    // A setting stands behind a single #, a sentence behind # and a blank.
    QByteArray settings = file;
    settings.replace("\n# ", "\n## ").replace("\n#\n", "\n##\n");
    static const QRegularExpression comment("(^|\\n)#(?![#\\s])");
    const QString bare = QString(settings).replace(comment, "\\1");
    const WatchOptions options = read({}, bare.toUtf8());
    QCOMPARE(options.error, QString());
    QCOMPARE(options.telling.remind_minutes, 60);
    QCOMPARE(options.telling.run_seconds, 60);
    QCOMPARE(options.quiet_seconds, 30);
    const QString help = read({"--help"}).answer;
    static const QRegularExpression option("--([a-z-]+)");
    QRegularExpressionMatchIterator found = option.globalMatch(help);
    while (found.hasNext()) {
        const QString name = found.next().captured(1);
        static const QStringList others = {"help", "version", "check", "json", "help-all"};
        if (!others.contains(name))
            QVERIFY2(bare.contains(QRegularExpression("(^|\\n)" + name + "( =|\\n)")),
                     qPrintable(name));
    }
}

void WatchSettingsTest::help_manual_and_completion_name_the_same_options()
{
    const QString help = read({"--help"}).answer;
    const QString manual = QString(content_of(source_file("docs/man/kest-watch.1")))
                               .replace("\\-", "-")
                               .remove("systemctl --user enable --now");
    const QString completion = content_of(source_file("packaging/completion/kest-watch"));
    static const QRegularExpression option("--[a-z-]+");
    QStringList names;
    QRegularExpressionMatchIterator found = option.globalMatch(help);
    while (found.hasNext())
        names << found.next().captured();
    names.removeAll("--help-all");
    QVERIFY(names.contains("--run-seconds"));
    for (const QString& name : names) {
        QVERIFY2(manual.contains(name), qPrintable(name));
        QVERIFY2(completion.contains(name), qPrintable(name));
    }
    QRegularExpressionMatchIterator told = option.globalMatch(manual);
    while (told.hasNext()) {
        const QString name = told.next().captured();
        QVERIFY2(help.contains(name), qPrintable(name));
    }
}

KEST_GUILESS_TEST(WatchSettingsTest)
#include "tst_watch_settings.moc"
