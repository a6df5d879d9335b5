#include "support/test_files.h"
#include "support/test_program.h"
#include "web_hook.h"

#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

/** kest-watch --check, as whoever sets it up runs it. */
class WatchCheckTest : public QObject
{
    Q_OBJECT

private slots:
    void all_ways_are_tried();
    void what_fails_is_told();
    void each_fate_is_told_as_it_is_known();
    void a_wrong_file_is_told();
};

namespace
{
constexpr int PATIENCE_MS = 120000;

/** The program with settings and a state of its own, and no bus to be found. */
struct Check
{
    explicit Check(const QByteArray& conf)
    {
        if (!write_file(folder.filePath("kest-watch.conf"), conf))
            qFatal("No settings.");
    }

    void start(QProcess& process) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("XDG_CONFIG_HOME", folder.path());
        environment.insert("XDG_STATE_HOME", folder.path());
        environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/session");
        environment.insert("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/system");
        process.setProcessEnvironment(environment);
        process.start(KEST_WATCH, {"--check", "/logs"});
    }

    void run()
    {
        QProcess process;
        start(process);
        // The test's own web hook answers meanwhile.
        const auto has_ended = [&] {
            return process.state() == QProcess::NotRunning;
        };
        if (QTest::qWaitFor(has_ended, PATIENCE_MS))
            status = process.exitCode();
        output = QString::fromUtf8(process.readAllStandardOutput());
        complaints = QString::fromUtf8(process.readAllStandardError());
    }

    QTemporaryDir folder;
    int status = -1;
    QString output;
    QString complaints;
};
}  // namespace

void WatchCheckTest::all_ways_are_tried()
{
    WebHook hook({"200"});
    Check check("no-desktop\nno-inhibit\nremind = 0\nquiet-hours = 22-6\nrun = true\npost = " +
                hook.url("/#bench").toUtf8() + "\n");
    check.run();
    QCOMPARE(check.complaints, QString());
    const QString post = "post " + hook.url("/#bench");
    QCOMPARE(check.output, "Follows: /logs\nTells by: command true\nTells by: " + post +
                               "\nReminders: none.\n"
                               "Quiet hours: from 22:00 to 06:00 all but silent instruments, "
                               "failing tests, programs that are gone and the disk waits.\n"
                               "command true: sent.\n" +
                               post + ": sent.\n");
    QCOMPARE(check.status, 0);
    QCOMPARE(hook.requests.size(), 1);
    QCOMPARE(QJsonDocument::fromJson(hook.requests[0].body)["event"].toString(), QString("test"));
}

void WatchCheckTest::what_fails_is_told()
{
    Check check("run = false\n");
    check.run();
    const QString refusal = "Failed to connect to socket /nowhere/%1: No such file or directory";
    QCOMPARE(check.output, "Follows: /logs\nTells by: desktop\nTells by: command false\n"
                           "Reminders: every 60 minutes, while something lasts.\n"
                           "Quiet hours: none.\n"
                           "desktop: FAILED: " +
                               refusal.arg("session") +
                               ".\n"
                               "command false: FAILED: ended with status 1.\n"
                               "sleep: FAILED: cannot be kept off: " +
                               refusal.arg("system") + "\n");
    QCOMPARE(check.status, 1);
}

void WatchCheckTest::each_fate_is_told_as_it_is_known()
{
    Check check("");
    const QString valve = check.folder.filePath("valve");
    QVERIFY(::mkfifo(QFile::encodeName(valve).constData(), 0600) == 0);
    QVERIFY(write_file(check.folder.filePath("kest-watch.conf"),
                       "no-desktop\nno-inhibit\nrun = true\nrun = cat " + valve.toUtf8() + "\n"));
    QProcess process;
    check.start(process);
    QByteArray said;
    while (!said.contains("command true: sent.\n") && process.waitForReadyRead(PATIENCE_MS))
        said += process.readAllStandardOutput();
    QVERIFY(said.endsWith("command true: sent.\n"));
    // Only now the second one may come to its end.
    QVERIFY(write_file(valve, "x"));
    QVERIFY(process.waitForFinished(PATIENCE_MS));
    QCOMPARE(QString::fromUtf8(process.readAllStandardOutput()),
             QString("command cat %1: sent.\n").arg(valve));
}

void WatchCheckTest::a_wrong_file_is_told()
{
    Check check("mail = anna@example.org\nremnd = 30\n");
    check.run();
    QCOMPARE(check.complaints, "kest-watch: " + check.folder.filePath("kest-watch.conf") +
                                   ", line 2: there is no setting 'remnd'. See kest-watch "
                                   "--help.\n");
    QCOMPARE(check.status, 2);
}

KEST_GUILESS_TEST(WatchCheckTest)
#include "tst_watch_check.moc"
