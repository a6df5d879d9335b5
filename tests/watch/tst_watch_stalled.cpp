#include "support/test_files.h"
#include "support/test_program.h"
#include "watch/watch.h"

#include <QFile>
#include <QMutex>
#include <QTemporaryDir>
#include <QtTest>

/** A folder of another machine that answers no more, beside one that does. */
class WatchStalledTest : public QObject
{
    Q_OBJECT

private slots:
    void a_folder_that_does_not_answer_holds_up_no_other();
};

namespace
{
constexpr int PATIENCE_MS = 60000;

const QByteArray HEAD = "Kestrometer Log\nBattery Name:  Pack\nSerial Number: 1\n"
                        "Charge Number:               1\n"
                        "Timestamp:                   2020-04-03 09:15:02\n"
                        "Time (s),Voltage (V)\n";

/** A folder with one test, which this process writes. */
class Place
{
public:
    Place() : data(folder.filePath("pack.csv")), events(folder.filePath("pack.txt"))
    {
        for (QFile* const log : {&data, &events})
            if (!log->open(QIODevice::WriteOnly | QIODevice::Unbuffered))
                qFatal("No log.");
        data.write(HEAD);
        enter("Charging");
    }
    void row()
    {
        data.write("2.0,25.30\n");
    }
    void enter(const QByteArray& phase)
    {
        events.write("2020-04-03 09:15:02 Switching to phase " + phase + " because x\n");
    }

    QTemporaryDir folder;
    QFile data;
    QFile events;
};

/** The states of one folder's test: "charging instrument-silent". */
QString states_in(const Look& look, const Place& place)
{
    QStringList states;
    for (const Situation& situation : look.situations)
        if (situation.log == QFile::encodeName(place.data.fileName()))
            states << traits_of(situation.condition).key;
    return states.join(' ');
}
}  // namespace

void WatchStalledTest::a_folder_that_does_not_answer_holds_up_no_other()
{
    Place far;
    Place near;
    QMutex gate;  // held while nobody answers
    WatchSettings settings;
    settings.folders = QStringList{far.folder.path(), near.folder.path()};
    settings.all_on_network = true;
    settings.ask = [&](const QByteArray& folder) {
        if (folder == QFile::encodeName(far.folder.path()))
            const QMutexLocker answer(&gate);
    };
    Moment now = present_moment();
    Watch watch(settings);
    const auto look_after = [&](int seconds) {
        now.time = now.time.addSecs(seconds);
        now.awake_ms += seconds * 1000;
        now.passed_ms += seconds * 1000;
        return watch.look(now);
    };
    look_after(0);
    far.row();
    near.row();
    Look look = look_after(2);
    QCOMPARE(states_in(look, far), QString("charging"));
    QCOMPARE(states_in(look, near), QString("charging"));

    gate.lock();
    far.enter("Done");
    near.enter("Ready for 1st Discharge");
    look_after(2);
    look = look_after(4);
    QCOMPARE(states_in(look, near), QString("waits-for-operator"));
    QCOMPARE(states_in(look, far), QString("charging"));
    look = look_after(31);
    QCOMPARE(states_in(look, near), QString("waits-for-operator"));
    QCOMPARE(states_in(look, far), QString("charging instrument-silent"));

    gate.unlock();
    const auto is_seen_again = [&] {
        return states_in(look_after(4), far) == "done";
    };
    QVERIFY(QTest::qWaitFor(is_seen_again, PATIENCE_MS));
}

KEST_GUILESS_TEST(WatchStalledTest)
#include "tst_watch_stalled.moc"
