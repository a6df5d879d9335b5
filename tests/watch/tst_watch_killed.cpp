#include "support/test_files.h"
#include "support/test_program.h"

#include <QDir>
#include <QJsonDocument>
#include <QMap>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

/** kill -9 at any moment: no event is lost, and only the one in hand is told twice. */
class WatchKilledTest : public QObject
{
    Q_OBJECT

private slots:
    void no_event_is_lost();
    void one_watch_is_enough();
};

namespace
{
constexpr int KILLS = 100;
constexpr int LONGEST_LIFE_MS = 150;
constexpr int PATIENCE_MS = 120000;

/** The half that tells, in a folder of its own, with a command that writes down what it gets. */
class KilledWatch
{
public:
    void set_world(const QStringList& logs)
    {
        // In one step, as the watch may look at any moment.
        if (!write_file(path("world.new"), logs.join('\n').toUtf8()))
            qFatal("No world.");
        if (::rename(qPrintable(path("world.new")), qPrintable(path("world"))) != 0)
            qFatal("No world.");
    }

    bool start()
    {
        return start(process);
    }

    bool start(QProcess& one)
    {
        one.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        one.start(TELLING_PROGRAM,
                  {path("state"), path("world"), "sh -c \"cat >> " + path("told") + "\""});
        return one.waitForStarted(PATIENCE_MS);
    }

    void kill()
    {
        process.kill();
        process.waitForFinished(PATIENCE_MS);
    }

    /** "begins /logs/3" and the number of it, in the order in which they were told. */
    QList<QPair<QString, int>> told() const
    {
        QList<QPair<QString, int>> events;
        for (const QByteArray& line : content_of(path("told")).split('\n')) {
            const QJsonDocument event = QJsonDocument::fromJson(line);
            if (event.isObject())
                events << qMakePair(event["event"].toString() + " " + event["file"].toString(),
                                    event["id"].toInt());
        }
        return events;
    }

    bool has_told(const QString& what) const
    {
        for (const auto& event : told())
            if (event.first == what)
                return true;
        return false;
    }

private:
    QString path(const QString& name) const
    {
        return folder.filePath(name);
    }

    QTemporaryDir folder;
    QProcess process;
};

/** Tests that are done and put away, as a night would have them. */
struct World
{
    /** Something new comes, and something that people know of goes. */
    void turn(const KilledWatch& watch, QRandomGenerator& random)
    {
        if (random.bounded(3) != 0)
            now << QString("/logs/%1").arg(++count);
        const int gone = now.isEmpty() ? 0 : random.bounded(now.size());
        if (!now.isEmpty() && watch.has_told("begins " + now[gone]))
            over << now.takeAt(gone);
    }

    QStringList expected() const
    {
        QStringList all;
        for (int i = 1; i <= count; ++i)
            all << QString("begins /logs/%1").arg(i);
        for (const QString& log : over)
            all << "over " + log;
        all.sort();
        return all;
    }

    QStringList now;
    QStringList over;
    int count = 0;
};
}  // namespace

void WatchKilledTest::no_event_is_lost()
{
    QRandomGenerator random(20261122);
    KilledWatch watch;
    World world;
    for (int kill = 0; kill < KILLS; ++kill) {
        world.turn(watch, random);
        watch.set_world(world.now);
        QVERIFY(watch.start());
        QTest::qWait(random.bounded(LONGEST_LIFE_MS));
        watch.kill();
    }
    QVERIFY(watch.start());
    QVERIFY(world.count > KILLS / 2);
    const QStringList expected = world.expected();
    for (const QString& event : expected)
        QVERIFY2(QTest::qWaitFor([&] { return watch.has_told(event); }, PATIENCE_MS),
                 qPrintable(event));
    watch.kill();

    QMap<QString, QSet<int>> numbers;
    const auto told = watch.told();
    for (const auto& [event, number] : told)
        numbers[event] << number;
    QCOMPARE(QStringList(numbers.keys()), expected);
    // One number is one event, by which whoever gets it twice can tell.
    for (const QSet<int>& of_event : numbers)
        QCOMPARE(of_event.size(), 1);
    QVERIFY2(told.size() - expected.size() <= KILLS + 1,
             qPrintable(QString("%1 of %2").arg(told.size()).arg(expected.size())));
    qInfo("%d kills: %d events, %d told twice.", KILLS, int(expected.size()),
          int(told.size() - expected.size()));
}

void WatchKilledTest::one_watch_is_enough()
{
    KilledWatch watch;
    watch.set_world({"/logs/1"});
    QVERIFY(watch.start());
    QVERIFY(QTest::qWaitFor([&] { return watch.has_told("begins /logs/1"); }, PATIENCE_MS));
    QProcess second;
    QVERIFY(watch.start(second));
    QVERIFY(second.waitForFinished(PATIENCE_MS));
    QCOMPARE(second.exitCode(), 1);
    watch.kill();
    QVERIFY(watch.start());
    watch.set_world({"/logs/2"});
    QVERIFY(QTest::qWaitFor([&] { return watch.has_told("begins /logs/2"); }, PATIENCE_MS));
    watch.kill();
}

KEST_GUILESS_TEST(WatchKilledTest)
#include "tst_watch_killed.moc"
