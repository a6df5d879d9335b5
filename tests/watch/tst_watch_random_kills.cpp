#include "support/test_program.h"
#include "watch_process.h"

#include <QDir>
#include <QMap>
#include <QProcess>
#include <QRandomGenerator>
#include <QSet>
#include <QtTest>

#include <algorithm>
#include <memory>
#include <vector>

/** kest-watch itself is killed at random moments of a busy night and started again: no event is lost. */
class WatchRandomKillsTest : public QObject
{
    Q_OBJECT

private slots:
    void no_event_is_lost_data();
    void no_event_is_lost();
};

namespace
{
constexpr int PATIENCE_MS = 120000;
constexpr int KILLS_A_NIGHT = 20;
constexpr int LONGEST_LIFE_MS = 5000;
constexpr int LONGEST_PAUSE_MS = 500;
constexpr int TURN_MS = 50;
constexpr int MOST_AT_A_TIME = 8;

/** A few with every run of the tests, a hundred where somebody asks for them. */
int all_kills()
{
    return qEnvironmentVariableIsSet("KEST_WATCH_KILLS")
               ? qEnvironmentVariableIntValue("KEST_WATCH_KILLS")
               : 4;
}

const QByteArray HEAD = "Kestrometer Log\nBattery Name:  Pack\nSerial Number: %1\n"
                        "Charge Number:               1\n"
                        "Timestamp:                   2020-04-03 09:15:02\n"
                        "Time (s),Voltage (V)\n1.0,25.20\n";

/** What a test of the night goes through, and what people are to hear of it. */
struct Step
{
    const char* phase;  ///< "" where its program ends instead
    const char* event;
};
constexpr Step STEPS[] = {
    {"Charging", ""},
    {"Ready for 1st Discharge", "begins waits-for-operator"},
    {"Discharging", "over waits-for-operator"},
    {"Done", "begins done"},
    {"", "begins ended"},
};
constexpr Step KILLED = {"", "begins program-gone"};
constexpr int LAST_STEP = int(std::size(STEPS)) - 1;

/** A test and the program that writes its logs, which goes by a name of its own. */
class NightlyTest
{
public:
    NightlyTest(const QDir& folder, int number, bool is_to_be_killed)
        : killed(is_to_be_killed), csv(folder.filePath(QString("pack%1.csv").arg(number)))
    {
        const QString program = folder.filePath(QString("../writer%1").arg(number));
        if (!QFile::link("/bin/sh", program))
            qFatal("No test of the night.");
        writer.start(program, {"-c",
                               "exec 3>>\"$1\" && echo open && while read -r line; do "
                               "echo \"$line\" >&3; done",
                               "sh", csv});
        while (!writer.canReadLine())
            if (!writer.waitForReadyRead(PATIENCE_MS))
                qFatal("The writer does not begin.");
        // One program opens it and keeps it, as the application does.
        writer.write(QByteArray(HEAD).replace("%1", QByteArray::number(number)));
        enter();
    }
    ~NightlyTest()
    {
        writer.kill();
        writer.waitForFinished();
    }

    void row()
    {
        if (writer.state() == QProcess::Running)
            writer.write("2.0,25.30\n");
    }
    QString event() const
    {
        return *present().event == '\0'
                   ? QString()
                   : QString("%1 %2").arg(present().event, QFileInfo(csv).fileName());
    }
    bool is_over() const
    {
        return *present().phase == '\0';
    }
    /** The next thing comes to pass. */
    void go_on()
    {
        ++step;
        enter();
    }

private:
    const Step& present() const
    {
        return step == LAST_STEP - 1 && killed ? KILLED : STEPS[step];
    }
    void enter()
    {
        if (is_over()) {
            killed ? writer.kill() : writer.closeWriteChannel();
            writer.waitForFinished(PATIENCE_MS);
            return;
        }
        // As it is at a look that comes later: the phase has stood for a while.
        const QString time =
            QDateTime::currentDateTime().addSecs(-10).toString("yyyy-MM-dd hh:mm:ss ");
        QFile events(QString(csv).replace(".csv", ".txt"));
        if (!events.open(QIODevice::Append))
            qFatal("No events.");
        events.write(
            QString("%1Switching to phase %2 because x\n").arg(time, present().phase).toLatin1());
    }

    bool killed;
    QString csv;
    QProcess writer;
    int step = 0;
};

/** All tests of a night; each goes on when people know how it stands. */
class Night
{
public:
    Night(const WatchProcess& killed_watch, quint32 seed) : watch(killed_watch), random(seed)
    {
        QDir(watch.folder.path()).mkdir("logs");
    }
    QDir logs() const
    {
        return QDir(watch.folder.filePath("logs"));
    }

    /** Something happens, or nothing. */
    void turn()
    {
        for (const auto& test : tests)
            test->row();
        const auto running = std::count_if(tests.begin(), tests.end(),
                                           [](const auto& test) { return !test->is_over(); });
        if (running < MOST_AT_A_TIME && random.bounded(12) == 0)
            tests.push_back(
                std::make_unique<NightlyTest>(logs(), int(tests.size()), random.bounded(2) == 0));
        if (tests.empty() || random.bounded(3) != 0)
            return;
        NightlyTest& test = *tests[random.bounded(quint32(tests.size()))];
        const QString event = test.event();
        if (test.is_over() || (!event.isEmpty() && !watch.told_in_short().contains(event)))
            return;
        test.go_on();
        if (!test.event().isEmpty())
            expected << test.event();
    }
    void go_on_for(int milliseconds)
    {
        QElapsedTimer timer;
        for (timer.start(); timer.elapsed() < milliseconds; QTest::qWait(TURN_MS))
            turn();
    }

    QStringList expected;

private:
    const WatchProcess& watch;
    QRandomGenerator random;
    std::vector<std::unique_ptr<NightlyTest>> tests;
};
/** All that was told of a test, for whoever looks for a fault. */
QString story_of(const QString& log, const QList<QJsonObject>& events)
{
    QStringList story;
    for (const QJsonObject& event : events)
        if (event["file"].toString().endsWith(log))
            story << QString("%1 %2 %3 since %4 at %5, %6")
                         .arg(event["id"].toInt())
                         .arg(event["event"].toString(), event["condition"].toString(),
                              event["since"].toString(), event["time"].toString(),
                              event["phase"].toString());
    return story.join('\n');
}
}  // namespace

void WatchRandomKillsTest::no_event_is_lost_data()
{
    QTest::addColumn<int>("kills");
    for (int done = 0; done < all_kills(); done += KILLS_A_NIGHT)
        QTest::addRow("night %d", done / KILLS_A_NIGHT + 1)
            << qMin(KILLS_A_NIGHT, all_kills() - done);
}

void WatchRandomKillsTest::no_event_is_lost()
{
    QFETCH(int, kills);
    QRandomGenerator random(quint32(qHash(QTest::currentDataTag())));
    WatchProcess watch;
    Night night(watch, random.generate());
    const QStringList arguments = {"--no-desktop", "--no-inhibit", "--quiet", "86400",
                                   night.logs().path()};
    for (int kill = 0; kill < kills; ++kill) {
        QVERIFY(watch.start(arguments));
        night.go_on_for(int(random.bounded(LONGEST_LIFE_MS)));
        watch.kill();
        night.go_on_for(int(random.bounded(LONGEST_PAUSE_MS)));
    }
    QVERIFY(watch.start(arguments));
    night.go_on_for(LONGEST_LIFE_MS);
    const QStringList expected = night.expected;
    for (const QString& event : expected)
        QVERIFY2(watch.tells(event), qPrintable(event));
    watch.kill();

    QMap<QString, QSet<int>> numbers;
    const QStringList told = watch.told_in_short();
    const QList<QJsonObject> events = watch.told();
    for (int i = 0; i < told.size(); ++i)
        numbers[told[i]] << events[i]["id"].toInt();
    QStringList sorted = expected;
    sorted.sort();
    QCOMPARE(QStringList(numbers.keys()), sorted);
    // One number is one event, by which whoever gets it twice can tell.
    for (auto event = numbers.cbegin(); event != numbers.cend(); ++event)
        QVERIFY2(event->size() == 1, qPrintable(story_of(event.key().section(' ', 2), events)));
    QVERIFY2(told.size() - expected.size() <= kills,
             qPrintable(QString("%1 of %2").arg(told.size()).arg(expected.size())));
    qInfo("%d kills: %d events, %d told twice.", kills, int(expected.size()),
          int(told.size() - expected.size()));
}

KEST_GUILESS_TEST(WatchRandomKillsTest)
#include "tst_watch_random_kills.moc"
