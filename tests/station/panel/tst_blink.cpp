#include "station/test_station.h"
#include "support/station_bench.h"
#include "support/test_program.h"

#include "config/settings.h"
#include "device/kestrometer.h"

#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QtTest>

/** What the tick of each second does: the button to press next, silence, disobedience. */
class BlinkTest : public QObject
{
    Q_OBJECT

private slots:
    void the_button_to_press_next_turns_red_data();
    void the_button_to_press_next_turns_red();
    void a_button_turns_plain_again_in_any_phase();
    void plain_is_the_panel_s_own_colour();
    void a_preview_is_led_to_its_log();
    void the_status_keeps_its_width();
    void the_status_shows_on_request();
    void the_status_shows_megabytes_as_far_as_a_screen_goes();
    void a_status_switched_on_later_has_the_panel_s_width();
    void silence_is_told_and_broken_data();
    void silence_is_told_and_broken();
    void resets_come_every_five_seconds_without_limit();
    void a_reset_needs_a_blink_on_its_second();
    void a_reset_is_logged_in_any_phase();
    void an_instrument_never_heard_is_not_silent();
    void a_clock_set_back_is_no_silence();
    void a_stuck_instrument_is_told_from_the_fifth_line();
    void a_discharge_without_current_is_told_data();
    void a_discharge_without_current_is_told();
};

namespace
{
const QByteArray RESET = QByteArray("UUUUUU\0\0\0\4", 10);

QColor color_of(const TestStation& station, const char* button)
{
    return station.findChild<QPushButton*>(button)->palette().color(QPalette::Active,
                                                                    QPalette::Button);
}

bool shows(StationBench& bench, const char* label)
{
    return !bench.widget<QLabel>(label)->isHidden();
}
}  // namespace

void BlinkTest::the_button_to_press_next_turns_red_data()
{
    QTest::addColumn<int>("phase");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<bool>("red");
    for (int phase = PHASE_IDLE; phase <= PHASE_DONE; ++phase) {
        const bool waiting = phase == PHASE_IDLE || phase == PHASE_READY_FOR_DISCHARGE;
        QTest::newRow(qPrintable(QString("phase %1").arg(phase))) << phase << true << waiting;
        add_row(qPrintable(QString("phase %1, disabled").arg(phase)), phase, false, false);
    }
}

void BlinkTest::the_button_to_press_next_turns_red()
{
    QFETCH(int, phase);
    QFETCH(bool, enabled);
    QFETCH(bool, red);
    StationBench bench;
    bench.station->slot_blink(true);
    const QColor plain = color_of(*bench.station, "pbStartSkip");
    bench.station->phase = Phase(phase);
    bench.widget<QPushButton>("pbStartSkip")->setEnabled(enabled);
    bench.station->slot_blink(false);
    QCOMPARE(color_of(*bench.station, "pbStartSkip"), red ? QColor(Qt::red) : plain);
    QCOMPARE(color_of(*bench.station, "pbLoadLog"), plain);
    bench.station->slot_blink(true);
    QCOMPARE(color_of(*bench.station, "pbStartSkip"), plain);
}

void BlinkTest::a_button_turns_plain_again_in_any_phase()
{
    StationBench bench;
    bench.type_names("Pack A", "1042");
    bench.station->slot_blink(false);
    QCOMPARE(color_of(*bench.station, "pbStartSkip"), QColor(Qt::red));
    bench.press("pbStartSkip");
    bench.station->slot_blink(true);
    QVERIFY(color_of(*bench.station, "pbStartSkip") != QColor(Qt::red));
    bench.station->slot_blink(false);
    QVERIFY(color_of(*bench.station, "pbStartSkip") != QColor(Qt::red));
}

void BlinkTest::plain_is_the_panel_s_own_colour()
{
    StationBench bench;
    QPalette palette = bench.station->palette();
    palette.setColor(QPalette::All, bench.station->backgroundRole(), QColor(1, 2, 3));
    bench.station->setPalette(palette);
    bench.station->slot_blink(true);
    for (const char* button : {"pbStartSkip", "pbLoadLog"}) {
        QCOMPARE(color_of(*bench.station, button), QColor(1, 2, 3));
        QVERIFY(bench.widget<QPushButton>(button)->autoFillBackground());
    }
}

void BlinkTest::a_preview_is_led_to_its_log()
{
    StationBench bench;
    TestStation preview(nullptr, nullptr);
    preview.slot_blink(true);
    const QColor plain = color_of(preview, "pbLoadLog");
    preview.slot_blink(false);
    QCOMPARE(color_of(preview, "pbLoadLog"), QColor(Qt::red));
    QCOMPARE(color_of(preview, "pbStartSkip"), plain);
    preview.slot_blink(true);
    // With a log there is nothing left to press.
    preview.data_log = new QFile(bench.path("shown.csv"));
    preview.slot_blink(false);
    QCOMPARE(color_of(preview, "pbLoadLog"), plain);
    QCOMPARE(color_of(preview, "pbStartSkip"), plain);
}

void BlinkTest::the_status_keeps_its_width()
{
    StationBench bench;
    TestStation preview(nullptr, nullptr);
    for (TestStation* station : {bench.station.get(), &preview}) {
        auto* status = station->findChild<QLabel*>("laKestrometerStatus");
        status->resize(321, 20);
        station->slot_blink(true);
        QCOMPARE(status->maximumWidth(), 321);
    }
}

void BlinkTest::the_status_shows_on_request()
{
    StationBench bench;
    bench.receive("41.52", "0.0", "O");
    bench.station->slot_blink(true);
    QVERIFY(!shows(bench, "laKestrometerStatus"));
    Settings::set_show_debug_info(true);
    QVERIFY(!shows(bench, "laKestrometerStatus"));
    bench.station->slot_blink(false);
    QVERIFY(shows(bench, "laKestrometerStatus"));
    const QString line = "x\t41.52\t0.0\tx\tx\tID=7\tO";
    QCOMPARE(bench.text("laKestrometerStatus"), "00s ago: " + line);
    bench.clock.advance_seconds(2.0);
    QCOMPARE(bench.text("laKestrometerStatus"), "00s ago: " + line);
    bench.station->slot_blink(true);
    QCOMPARE(bench.text("laKestrometerStatus"), "02s ago: " + line);
    Settings::set_show_debug_info(false);
    bench.station->slot_blink(false);
    QVERIFY(!shows(bench, "laKestrometerStatus"));
}

void BlinkTest::the_status_shows_megabytes_as_far_as_a_screen_goes()
{
    StationBench bench;
    bench.station->kestrometer->last_data = QString(3000000, 'x');
    bench.station->slot_blink(true);
    QCOMPARE(bench.text("laKestrometerStatus"),
             bench.station->kestrometer->get_status().left(4000));
}

void BlinkTest::a_status_switched_on_later_has_the_panel_s_width()
{
    StationBench bench;
    bench.station->slot_blink(true);
    bench.station->slot_blink(false);
    Settings::set_show_debug_info(true);
    bench.station->slot_blink(true);
    bench.station->adjustSize();
    const auto* status = bench.widget<QLabel>("laKestrometerStatus");
    QCOMPARE(status->width(), bench.widget<QWidget>("frDetails")->width());
    QCOMPARE(status->maximumWidth(), status->width());
}

void BlinkTest::silence_is_told_and_broken_data()
{
    QTest::addColumn<double>("silence");
    QTest::addColumn<bool>("told");
    QTest::addColumn<bool>("reset");
    QTest::newRow("0 s") << 0.0 << false << false;
    QTest::newRow("2 s") << 2.0 << false << false;
    QTest::newRow("nearly 3 s") << 2.999 << false << false;
    QTest::newRow("3 s") << 3.0 << true << false;
    QTest::newRow("4.999 s") << 4.999 << true << false;
    QTest::newRow("5 s") << 5.0 << true << true;
    QTest::newRow("5.999 s") << 5.999 << true << true;
    QTest::newRow("6 s") << 6.0 << true << false;
    QTest::newRow("10 s") << 10.0 << true << true;
    QTest::newRow("a day") << 86400.0 << true << true;
}

void BlinkTest::silence_is_told_and_broken()
{
    QFETCH(double, silence);
    QFETCH(bool, reset);
    StationBench bench;
    bench.start();
    bench.receive("41.52", "1.0", "C");
    bench.wire.commands();
    const QByteArray events = bench.txt();
    bench.clock.advance_seconds(silence);
    bench.station->slot_blink(true);
    QTEST(shows(bench, "laLostCommunication"), "told");
    QCOMPARE(bench.wire.commands(), reset ? RESET : QByteArray());
    const QByteArray line =
        bench.clock.now.toString("yyyy-MM-dd hh:mm:ss").toLatin1() +
        " Attempting to reset the Kestrometer as it may be stuck in bootloader mode.\n";
    QCOMPARE(bench.txt(), reset ? events + line : events);
    // The next line ends the silence.
    bench.receive("41.52", "1.0", "C");
    bench.station->slot_blink(false);
    QVERIFY(!shows(bench, "laLostCommunication"));
}

void BlinkTest::resets_come_every_five_seconds_without_limit()
{
    StationBench bench;
    bench.receive("41.52", "0.0", "O");
    bench.wire.commands();
    for (int second = 1; second <= 100; ++second) {
        bench.clock.advance_seconds(1.0);
        bench.station->slot_blink(second % 2 == 0);
    }
    QCOMPARE(bench.wire.commands(), RESET.repeated(20));
}

void BlinkTest::a_reset_needs_a_blink_on_its_second()
{
    StationBench bench;
    bench.receive("41.52", "0.0", "O");
    bench.wire.commands();
    for (const double seconds : {4.9, 1.2, 3.8, 1.2}) {  // 4.9, 6.1, 9.9 and 11.1 in all
        bench.clock.advance_seconds(seconds);
        bench.station->slot_blink(true);
    }
    QCOMPARE(bench.wire.commands(), QByteArray());
}

void BlinkTest::a_reset_is_logged_in_any_phase()
{
    StationBench bench;
    bench.start();
    bench.receive("41.52", "1.0", "C");
    bench.clock.advance_seconds(5.0);
    for (int phase = PHASE_IDLE; phase <= PHASE_DONE; ++phase) {
        bench.station->phase = Phase(phase);
        bench.wire.commands();
        const int before = bench.txt().count('\n');
        bench.station->slot_blink(true);
        QCOMPARE(bench.wire.commands(), RESET);
        QCOMPARE(bench.txt().count('\n'), before + 1);
    }
}

void BlinkTest::an_instrument_never_heard_is_not_silent()
{
    StationBench bench;
    bench.clock.advance_seconds(3600.0);
    bench.station->slot_blink(true);
    QVERIFY(!shows(bench, "laLostCommunication"));
    QCOMPARE(bench.wire.commands(), QByteArray());
}

void BlinkTest::a_clock_set_back_is_no_silence()
{
    StationBench bench;
    bench.receive("41.52", "0.0", "O");
    bench.clock.advance_seconds(-5.0);
    bench.station->slot_blink(true);
    QVERIFY(!shows(bench, "laLostCommunication"));
    QCOMPARE(bench.wire.commands(), QByteArray());
}

void BlinkTest::a_stuck_instrument_is_told_from_the_fifth_line()
{
    StationBench bench;
    bench.start();
    for (int line = 1; line <= 5; ++line) {
        bench.receive("41.52", "0.0", "O");
        bench.station->slot_blink(true);
        QCOMPARE(shows(bench, "laKestrometerIsStuck"), line == 5);
    }
    bench.receive("41.52", "1.0", "C");
    bench.station->slot_blink(false);
    QVERIFY(!shows(bench, "laKestrometerIsStuck"));
}

void BlinkTest::a_discharge_without_current_is_told_data()
{
    QTest::addColumn<int>("phase");
    QTest::addColumn<double>("current");
    QTest::addColumn<bool>("told");
    QTest::newRow("no current") << int(PHASE_DISCHARGING) << 0.0 << true;
    QTest::newRow("hardly any") << int(PHASE_DISCHARGING) << 0.0999 << true;
    QTest::newRow("enough") << int(PHASE_DISCHARGING) << 0.1 << false;
    QTest::newRow("charged instead") << int(PHASE_DISCHARGING) << -5.0 << true;
    for (int phase = PHASE_IDLE; phase <= PHASE_DONE; ++phase)
        if (phase != PHASE_DISCHARGING)
            QTest::newRow(qPrintable(QString("phase %1").arg(phase))) << phase << 0.0 << false;
}

void BlinkTest::a_discharge_without_current_is_told()
{
    QFETCH(int, phase);
    QFETCH(double, current);
    StationBench bench;
    bench.station->phase = Phase(phase);
    bench.instrument->current = current;
    bench.station->slot_blink(true);
    QTEST(shows(bench, "laNotDischarging"), "told");
    QVERIFY(!shows(bench, "laNotCharging"));
}

KEST_TEST(BlinkTest)
#include "tst_blink.moc"
