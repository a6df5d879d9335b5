#include "support/phase_tour.h"
#include "support/test_program.h"

#include "device/kestrometer.h"
#include "station/test_station.h"

#include <QCoreApplication>
#include <QLabel>
#include <QPushButton>
#include <QtTest>

/** Instruments, packs and ports that misbehave in a test, in each phase where it matters. */
class WholeFaultsTest : public QObject
{
    Q_OBJECT

private slots:
    void the_test_goes_on_to_done_data();
    void the_test_goes_on_to_done();
    void the_test_waits_until_it_is_mended_or_dropped_data();
    void the_test_waits_until_it_is_mended_or_dropped();
    void a_phase_goes_on_by_its_own_clock_under_a_wrong_letter_data();
    void a_phase_goes_on_by_its_own_clock_under_a_wrong_letter();
    void without_a_load_the_discharge_stands_until_load_or_skip();
    void silence_is_told_and_forgotten_data();
    void silence_is_told_and_forgotten();
    void a_port_that_vanishes_leaves_all_calm_data();
    void a_port_that_vanishes_leaves_all_calm();
};

namespace
{
/** Counts what sockets and ports have to say to the event loop. */
class SocketActivity : public QObject
{
public:
    SocketActivity()
    {
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject*, QEvent* event) override
    {
        count += event->type() == QEvent::SockAct ? 1 : 0;
        return false;
    }

    int count = 0;
};

void add_phase_rows()
{
    QTest::addColumn<Phase>("phase");
    QTest::newRow("configure") << PHASE_IDLE;
    QTest::newRow("charge") << PHASE_CHARGING;
    QTest::newRow("levelled charge") << PHASE_CHARGING_LEVELED;
    QTest::newRow("full charge test") << PHASE_FULL_CHARGE_TEST;
    QTest::newRow("prompt") << PHASE_READY_FOR_DISCHARGE;
    QTest::newRow("discharge") << PHASE_DISCHARGING;
    QTest::newRow("resistance test") << PHASE_IR_TEST;
    QTest::newRow("recovery") << PHASE_IR_RECOVERY;
    QTest::newRow("final charge") << PHASE_FINAL_CHARGE;
    QTest::newRow("final charge test") << PHASE_FINAL_CHARGE_TEST;
    QTest::newRow("done") << PHASE_DONE;
}

bool shown(PhaseTour& tour, const char* label)
{
    return tour.test.bench.widget<QLabel>(label)->isVisible();
}

/** The end of the event log, from the given line on, without the times. */
QByteArray events(PhaseTour& tour, int first)
{
    QByteArray texts;
    const QList<QByteArray> lines = tour.test.bench.txt().split('\n');
    for (const QByteArray& line : lines.mid(first))
        texts += line.mid(20) + '\n';
    return texts;
}
}  // namespace

void WholeFaultsTest::the_test_goes_on_to_done_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QSet<Phase>>("phases");
    QTest::addColumn<QString>("golden");
    const QSet<Phase> all = PhaseTour::every_phase();
    const QSet<Phase> from_the_first = {PHASE_IDLE};
    QTest::newRow("silence") << "silence 12" << all << "silence";
    QTest::newRow("slow") << "slow 3" << from_the_first << "slow_lines";
    QTest::newRow("fast") << "fast 3" << from_the_first << "fast_lines";
    QTest::newRow("one command ignored") << "ignore-next 1" << all << "command_ignored";
    QTest::newRow("deaf for some lines") << "ignore-commands 3" << all << "commands_ignored";
    QTest::newRow("late commands") << "late-commands 3" << from_the_first << "late_commands";
    QTest::newRow("letter sticks") << "stuck-state O 3" << all << "letter_sticks";
    QTest::newRow("restart") << "restart 2" << all << "restart";
    QTest::newRow("bootloader") << "bootloader" << all << "bootloader";
    QTest::newRow("protection trips") << "trip-protection" << all << "protection_trips";
    add_row("protection trips in a resistance test", "trip-protection", QSet<Phase>{PHASE_IR_TEST},
            "protection_trips_in_ir_test");
    add_row("protection trips in a recovery", "trip-protection", QSet<Phase>{PHASE_IR_RECOVERY},
            "protection_trips_in_recovery");
    QTest::newRow("current after off") << "current-after-off 0.3 3" << all << "current_after_off";
}

void WholeFaultsTest::the_test_goes_on_to_done()
{
    QFETCH(QString, fault);
    QFETCH(QSet<Phase>, phases);
    QFETCH(QString, golden);
    PhaseTour tour(fault, phases);
    QVERIFY(tour.run());
    QCOMPARE(tour.test.difference_from(golden), QString());
    QVERIFY(tour.test.bench.answers.seen.empty());
}

void WholeFaultsTest::the_test_waits_until_it_is_mended_or_dropped_data()
{
    add_columns<Phase>({"before", "phase"});
    QTest::addColumn<QString>("fault");
    QTest::addColumn<bool>("stuck");
    add_row("charger not off", PHASE_CHARGING_LEVELED, PHASE_FULL_CHARGE_TEST,
            "ignore-commands forever", true);
    add_row("full charge test, letter", PHASE_CHARGING_LEVELED, PHASE_FULL_CHARGE_TEST,
            "stuck-state C forever", true);
    add_row("load not off", PHASE_DISCHARGING, PHASE_IR_TEST, "ignore-commands forever", true);
    add_row("resistance test, letter", PHASE_DISCHARGING, PHASE_IR_TEST, "stuck-state D forever",
            true);
    add_row("current stays", PHASE_DISCHARGING, PHASE_IR_TEST, "current-after-off 0.1 forever",
            false);
    add_row("load not on", PHASE_IR_TEST, PHASE_IR_RECOVERY, "ignore-commands forever", true);
    add_row("recovery, letter", PHASE_IR_TEST, PHASE_IR_RECOVERY, "stuck-state O forever", true);
    add_row("voltage stays up", PHASE_IR_TEST, PHASE_IR_RECOVERY, "field 1 26.00 forever", false);
}

void WholeFaultsTest::the_test_waits_until_it_is_mended_or_dropped()
{
    QFETCH(Phase, before);
    QFETCH(Phase, phase);
    QFETCH(QString, fault);
    QFETCH(bool, stuck);
    for (const bool mended : {true, false}) {
        PhaseTour tour;
        QVERIFY(tour.reach(before));
        tour.test.link.set_fault(fault);
        QVERIFY(tour.reach(phase));
        const QByteArray txt = tour.test.bench.txt();
        const int rows = tour.test.bench.csv().count('\n');
        tour.test.run(200);
        QCOMPARE(tour.test.station.phase, phase);
        QCOMPARE(tour.test.bench.txt(), txt);
        QCOMPARE(tour.test.bench.csv().count('\n'), rows + 200);
        QVERIFY(!tour.test.bench.widget<QPushButton>("pbStartSkip")->isEnabled());
        QCOMPARE(shown(tour, "laKestrometerIsStuck"), stuck);
        if (mended) {
            tour.test.link.set_fault("clear");
            QVERIFY(tour.run());
            QVERIFY(!shown(tour, "laKestrometerIsStuck"));
            continue;
        }
        tour.test.bench.answers.click(QMessageBox::Ok);
        tour.test.press("pbNewTest");
        QCOMPARE(tour.test.station.phase, PHASE_IDLE);
        QCOMPARE(tour.test.bench.answers.seen.size(), size_t(1));
    }
}

void WholeFaultsTest::a_phase_goes_on_by_its_own_clock_under_a_wrong_letter_data()
{
    add_columns<Phase>({"phase", "next"});
    QTest::addColumn<QString>("fault");
    QTest::newRow("charge") << PHASE_CHARGING << PHASE_CHARGING_LEVELED << "stuck-state X forever";
    add_row("levelled charge", PHASE_CHARGING_LEVELED, PHASE_FULL_CHARGE_TEST,
            "stuck-state X forever");
    QTest::newRow("discharge") << PHASE_DISCHARGING << PHASE_IR_TEST << "stuck-state X forever";
    QTest::newRow("final charge") << PHASE_FINAL_CHARGE << PHASE_DONE << "stuck-state X forever";
}

void WholeFaultsTest::a_phase_goes_on_by_its_own_clock_under_a_wrong_letter()
{
    QFETCH(Phase, phase);
    QFETCH(Phase, next);
    QFETCH(QString, fault);
    PhaseTour tour;
    QVERIFY(tour.reach(phase));
    tour.test.link.set_fault(fault);
    QVERIFY(tour.reach(next));
    tour.test.run(5);
    QVERIFY(shown(tour, "laKestrometerIsStuck"));
}

void WholeFaultsTest::without_a_load_the_discharge_stands_until_load_or_skip()
{
    for (const bool load_returns : {true, false}) {
        PhaseTour tour;
        QVERIFY(tour.reach(PHASE_DISCHARGING));
        tour.test.run(2);
        const QByteArray csv = tour.test.bench.csv();
        const double amp_hours = tour.test.station.current_cycle->amp_hours;
        tour.test.link.set_fault("no-load");
        tour.test.run(200);
        QCOMPARE(tour.test.station.phase, PHASE_DISCHARGING);
        QCOMPARE(tour.test.bench.csv(), csv);
        QCOMPARE(tour.test.station.current_cycle->amp_hours, amp_hours);
        QVERIFY(shown(tour, "laNotDischarging"));
        if (load_returns)
            tour.test.link.set_fault("load");
        else
            tour.test.press("pbStartSkip");
        tour.test.run(1);
        QVERIFY(!shown(tour, "laNotDischarging"));
        QVERIFY(tour.run());
    }
}

void WholeFaultsTest::silence_is_told_and_forgotten_data()
{
    add_phase_rows();
}

void WholeFaultsTest::silence_is_told_and_forgotten()
{
    QFETCH(Phase, phase);
    PhaseTour tour;
    if (phase != PHASE_IDLE)
        QVERIFY(tour.reach(phase));
    const QByteArray csv = tour.test.bench.csv();
    tour.test.link.commands.clear();
    tour.test.link.set_fault("silence 4");
    tour.test.run(2);
    QVERIFY(!shown(tour, "laLostCommunication"));
    tour.test.run(1);
    QVERIFY(shown(tour, "laLostCommunication"));
    tour.test.run(1);
    QVERIFY(shown(tour, "laLostCommunication"));
    QCOMPARE(tour.test.station.phase, phase);
    QCOMPARE(tour.test.bench.csv(), csv);
    QCOMPARE(tour.test.link.commands, QByteArray());
    tour.test.run(1);
    QVERIFY(!shown(tour, "laLostCommunication"));
    QVERIFY(tour.run());
}

void WholeFaultsTest::a_port_that_vanishes_leaves_all_calm_data()
{
    add_phase_rows();
}

void WholeFaultsTest::a_port_that_vanishes_leaves_all_calm()
{
    QFETCH(Phase, phase);
    PhaseTour tour;
    if (phase != PHASE_IDLE)
        QVERIFY(tour.reach(phase));
    Kestrometer& instrument = *tour.test.bench.instrument;
    int errors = 0;
    connect(&instrument.port, &QSerialPort::errorOccurred, [&errors] { ++errors; });
    const QByteArray csv = tour.test.bench.csv();
    const int events_before = tour.test.bench.txt().count('\n');
    tour.test.link.set_fault("vanish");
    tour.test.run(1);
    QVERIFY(spin_until([&instrument] { return !instrument.port.isOpen(); }));
    QCOMPARE(errors, 1);

    SocketActivity activity;
    for (int turn = 0; turn < 200; ++turn)
        QCoreApplication::processEvents();
    tour.test.run(11);
    for (int turn = 0; turn < 200; ++turn)
        QCoreApplication::processEvents();
    QCOMPARE(activity.count, 0);
    QCOMPARE(errors, 1);
    QCOMPARE(tour.test.station.phase, phase);
    QCOMPARE(tour.test.bench.csv(), csv);
    QVERIFY(shown(tour, "laLostCommunication"));
    const QByteArray attempt =
        "Attempting to reset the Kestrometer as it may be stuck in bootloader mode.\n";
    QCOMPARE(events(tour, events_before),
             phase == PHASE_IDLE ? QByteArray("\n") : attempt + attempt + '\n');
    QVERIFY(tour.test.bench.answers.seen.empty());
}

KEST_TEST(WholeFaultsTest)
#include "tst_whole_faults.moc"
