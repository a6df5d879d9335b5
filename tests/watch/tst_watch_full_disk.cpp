#include "small_disk.h"
#include "support/test_files.h"
#include "support/test_program.h"
#include "watch_process.h"

#include <QDir>
#include <QProcess>
#include <QtTest>

#include <memory>
#include <vector>

/** A disk of 1 MB that fills up, with the state of the watch on it. */
class WatchFullDiskTest : public QObject
{
    Q_OBJECT

private slots:
    void nothing_is_lost_and_nothing_told_twice();
};

namespace
{
constexpr int PATIENCE_MS = 120000;

const QByteArray HEAD = "Kestrometer Log\nBattery Name:  Pack\nSerial Number: 1\n"
                        "Charge Number:               1\n"
                        "Timestamp:                   2020-04-03 09:15:02\n"
                        "Time (s),Voltage (V)\n1.0,25.20\n";

/** Tests that wait for their operator, written by programs in the world of the disk. */
class WaitingTests
{
public:
    WaitingTests(const SmallDisk& small_disk, const QString& folder)
        : disk(small_disk), place(folder)
    {
    }
    ~WaitingTests()
    {
        for (const auto& writer : writers) {
            writer->kill();
            writer->waitForFinished(PATIENCE_MS);
        }
    }
    void begin(const QString& name)
    {
        writers.push_back(std::make_unique<QProcess>());
        QProcess& writer = *writers.back();
        const QStringList words =
            disk.entrance() + QStringList{"sh", "-c", "exec 3>>\"$1\" && echo open && exec cat >&3",
                                          "sh", place.filePath(name + ".csv")};
        writer.start(words.first(), words.mid(1));
        while (!writer.canReadLine())
            if (!writer.waitForReadyRead(PATIENCE_MS))
                qFatal("No log.");
        writer.write(HEAD);
        writer.waitForBytesWritten(PATIENCE_MS);
        const QString time =
            QDateTime::currentDateTime().addSecs(-10).toString("yyyy-MM-dd hh:mm:ss ");
        const QString change = "Switching to phase Ready for 1st Discharge because x\n";
        if (!write_file(place.filePath(name + ".txt"), (time + change).toLatin1()))
            qFatal("No events.");
    }

private:
    const SmallDisk& disk;
    QDir place;
    std::vector<std::unique_ptr<QProcess>> writers;
};

bool comes_true(const std::function<bool()>& state)
{
    return QTest::qWaitFor(state, PATIENCE_MS);
}
}  // namespace

void WatchFullDiskTest::nothing_is_lost_and_nothing_told_twice()
{
    const SmallDisk disk;
    const QTemporaryDir elsewhere;
    WaitingTests tests(disk, elsewhere.path());
    WatchProcess watch;
    watch.environment.insert("XDG_STATE_HOME", disk.path());
    watch.wrapper = disk.entrance();
    watch.ending = "";
    const QString small = QFileInfo(disk.path()).fileName();
    const QString memory = disk.file("kest-watch/memory.json");
    const QString running = disk.file("kest-watch/tests.json");
    const QStringList arguments = {"--no-desktop", "--no-inhibit", elsewhere.path(), disk.path()};
    // The disk of the tests may be low as well; nobody asks about that.
    const auto told = [&] {
        QStringList all;
        for (const QString& event : watch.told_in_short())
            if (event.endsWith(small) || event.endsWith(".csv"))
                all << event;
        return all;
    };

    QVERIFY(watch.start(arguments));
    QVERIFY(watch.tells("begins disk-low " + small));
    tests.begin("one");
    QVERIFY(watch.tells("begins waits-for-operator one.csv"));
    QVERIFY(comes_true([&] { return content_of(memory).contains("one.csv"); }));
    QVERIFY(comes_true([&] { return content_of(memory).contains("\"letters\": [\n    ]"); }));
    const QByteArray before = content_of(memory);

    QVERIFY(disk.fill());
    QVERIFY(watch.tells("begins disk-full " + small));
    tests.begin("two");
    QVERIFY(watch.tells("begins waits-for-operator two.csv"));
    QCOMPARE(content_of(memory), before);
    QVERIFY(!content_of(running).contains("two.csv"));
    QCOMPARE(QDir(disk.file("kest-watch")).entryList(QDir::Files | QDir::Hidden).filter(".new"),
             QStringList());
    const QByteArray complaint = "memory.json cannot be written: No space left on device.";
    QVERIFY(comes_true([&] { return watch.complaints().contains(complaint); }));

    QVERIFY(disk.make_room());
    QVERIFY(watch.tells("over disk-full " + small));
    QVERIFY(comes_true([&] { return content_of(memory).contains("two.csv"); }));
    QVERIFY(comes_true([&] { return content_of(running).contains("two.csv"); }));
    QVERIFY(comes_true([&] { return content_of(memory).contains("\"letters\": [\n    ]"); }));
    QCOMPARE(watch.complaints().count("cannot be written"), 1);

    watch.kill();
    QVERIFY(watch.start(arguments));
    tests.begin("three");
    QVERIFY(watch.tells("begins waits-for-operator three.csv"));
    QCOMPARE(told(), QStringList({"begins disk-low " + small, "begins waits-for-operator one.csv",
                                  "begins disk-full " + small, "begins waits-for-operator two.csv",
                                  "over disk-full " + small, "begins disk-low " + small,
                                  "begins waits-for-operator three.csv"}));
    QCOMPARE(watch.end(), 0);
}

KEST_GUILESS_TEST(WatchFullDiskTest)
#include "tst_watch_full_disk.moc"
