#include "support/test_program.h"
#include "watch_bench.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

/** The watch beside the application in a process of its own, with simulated instruments in time lapse. */
class WatchDemoTest : public QObject
{
    Q_OBJECT

private slots:
    void a_whole_test_is_watched_and_a_preview_is_not();
    void an_application_that_is_killed_is_missed();
};

namespace
{
// A limit for what has gone wrong: half an hour of the demo's time are five seconds.
constexpr int PATIENCE_MS = 300000;
constexpr int LOOK_MS = 100;
const char* const SPEED = "360";

/** The demo, and a watch of its folder that looks as the time really goes. */
class WatchedDemo
{
public:
    WatchedDemo() : watched(logs.path())
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("HOME", home.path());
        environment.insert("XDG_DATA_HOME", home.path());
        demo.setProcessEnvironment(environment);
        demo.setStandardOutputFile(QProcess::nullDevice());
        demo.setStandardErrorFile(QProcess::nullDevice());
        demo.start(KEST_DEMO, {"--unattended", logs.path(), "--speed", SPEED});
    }
    ~WatchedDemo()
    {
        demo.kill();
        demo.waitForFinished();
    }

    /** Looks until the demo has ended or one of the tests is found so. */
    void watch_until(const QString& condition)
    {
        QElapsedTimer timer;
        timer.start();
        bool ended = false;
        while (!ended && timer.elapsed() < PATIENCE_MS) {
            ended = demo.waitForFinished(LOOK_MS) || demo.state() == QProcess::NotRunning;
            const QString now = look();
            // Whether a short step is seen is a matter of how busy the machine is.
            const bool step = now.startsWith("testing");
            if (!step && (found.isEmpty() || found.last() != now))
                found << now;
            ended = ended || now == condition;
        }
    }
    QString look()
    {
        watched.now = present_moment();
        return watched.look_after(0);
    }

    QTemporaryDir home;
    QTemporaryDir logs;
    WatchedFolder watched;
    QProcess demo;
    QStringList found;  ///< one look after the other, without repetitions
};
}  // namespace

void WatchDemoTest::a_whole_test_is_watched_and_a_preview_is_not()
{
    WatchedDemo bench;
    bench.watch_until("no such state");
    QCOMPARE(bench.demo.exitCode(), 0);
    // Which of the short legs are seen is a matter of how busy the machine is.
    QVERIFY(bench.found.contains("charging"));
    QCOMPARE(bench.found.last(), QString("ended"));
    for (const QString& found : bench.found)
        QVERIFY2(QStringList({"", "charging", "discharging", "done", "ended"}).contains(found),
                 qPrintable(found));
    QCOMPARE(bench.watched.situation(Condition::Ended)->facts.cycle, 2);
    QCOMPARE(bench.watched.situation(Condition::Ended)->facts.battery, QString("Demo Pack"));
}

void WatchDemoTest::an_application_that_is_killed_is_missed()
{
    WatchedDemo bench;
    bench.watch_until("charging");
    QCOMPARE(bench.found.last(), QString("charging"));
    bench.demo.kill();
    QVERIFY(bench.demo.waitForFinished(PATIENCE_MS));
    QCOMPARE(bench.look(), QString("program-gone"));
    bench.watched.restart();
    QCOMPARE(bench.look(), QString("program-gone"));
}

KEST_GUILESS_TEST(WatchDemoTest)
#include "tst_watch_demo.moc"
