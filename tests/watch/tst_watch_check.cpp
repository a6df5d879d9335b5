#include "support/test_files.h"
#include "support/test_program.h"
#include "web_hook.h"

#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

/** kest-watch --check, as whoever sets it up runs it. */
class WatchCheckTest : public QObject
{
    Q_OBJECT

private slots:
    void all_ways_are_tried();
    void what_fails_is_told();
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

    void run()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("XDG_CONFIG_HOME", folder.path());
        environment.insert("XDG_STATE_HOME", folder.path());
        environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/session");
        environment.insert("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/system");
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(KEST_WATCH, {"--check", "/logs"});
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
