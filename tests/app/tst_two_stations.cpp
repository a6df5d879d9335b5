#include "support/golden_file.h"
#include "support/test_program.h"
#include "support/whole_test.h"

#include "device/kestrometer.h"
#include "station/test_station.h"

#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

/** Two tests side by side: what befalls one leaves the other as it is. */
class TwoStationsTest : public QObject
{
    Q_OBJECT

private slots:
    void the_second_goes_its_way_whatever_befalls_the_first_data();
    void the_second_goes_its_way_whatever_befalls_the_first();
};

namespace
{
/** Beside the first station, with an instrument and a pack of its own; the clock is the first's. */
struct SecondStation
{
    SecondStation()
        : station(nullptr, new Kestrometer(wire.port_name())), link(wire, station, pack(), 31)
    {
        station.show();
        station.max_charge_time = 60;
        QTest::keyClicks(station.findChild<QLineEdit*>("leProfileName"), "Pack B");
        QTest::keyClicks(station.findChild<QLineEdit*>("leSerialNumber"), "31");
    }

    static PackModel pack()
    {
        PackModel small = WholeTest::quick_pack();
        small.capacity_ah = 0.02;
        return small;
    }

    void start()
    {
        QTest::mouseClick(station.findChild<QPushButton*>("pbStartSkip"), Qt::LeftButton);
        link.take_commands();
    }

    QString difference(const StationBench& bench) const
    {
        return difference_from_golden("whole/second_of_two.commands", link.commands) +
               difference_from_golden("whole/second_of_two.csv", bench.file("Pack B_31.csv")) +
               difference_from_golden("whole/second_of_two.txt", bench.file("Pack B_31.txt"));
    }

    Wire wire;
    TestStation station;
    SimulatedLink link;
};
}  // namespace

void TwoStationsTest::the_second_goes_its_way_whatever_befalls_the_first_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<Phase>("first_phase");
    QTest::newRow("silence") << "silence 4" << PHASE_DONE;
    QTest::newRow("bootloader") << "bootloader" << PHASE_DONE;
    QTest::newRow("babble") << "babble 100000" << PHASE_DONE;
    QTest::newRow("port vanishes") << "vanish" << PHASE_CHARGING;
}

void TwoStationsTest::the_second_goes_its_way_whatever_befalls_the_first()
{
    QFETCH(QString, fault);
    QFETCH(Phase, first_phase);
    WholeTest first;
    SecondStation second;
    first.station.max_charge_time = 60;
    first.start("Pack A", "1042");
    for (int elapsed = 0; elapsed < 250; ++elapsed) {
        first.run(1);
        second.link.advance(1);
        if (elapsed == 9)
            second.start();
        if (elapsed == 30)
            first.link.set_fault(fault);
    }
    QCOMPARE(second.difference(first.bench), QString());
    QCOMPARE(second.station.phase, PHASE_DONE);
    QCOMPARE(first.station.phase, first_phase);
    if (fault.startsWith("silence"))
        QCOMPARE(first.difference_from("first_of_two"), QString());
}

KEST_TEST(TwoStationsTest)
#include "tst_two_stations.moc"
