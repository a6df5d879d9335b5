#include "station/test_station.h"
#include "support/station_bench.h"
#include "support/test_program.h"
#include "support/test_road.h"

#include "device/kestrometer.h"

#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QtTest>

/** Every label of the panel, as the station's state has it. */
class DisplayTest : public QObject
{
    Q_OBJECT

private slots:
    void names_have_their_warnings_data();
    void names_have_their_warnings();
    void start_needs_safe_names_and_an_instrument();
    void outside_of_the_first_phase_start_is_left_alone();
    void the_identity_follows_the_instrument();
    void the_cycle_is_counted_from_one();
    void the_resistance_is_the_mean_of_all();
    void totals_are_those_of_the_cycle();
    void totals_of_a_finished_cycle_stay_until_the_next_delivers();
    void the_voltage_has_one_decimal_data();
    void the_voltage_has_one_decimal();
    void the_current_depends_on_the_phase_data();
    void the_current_depends_on_the_phase();
    void elapsed_time_needs_a_log();
    void a_preview_shows_no_readings();
};

namespace
{
TestCycle* add_cycle(TestStation& station, double amp_hours, double watt_hours)
{
    TestCycle* cycle = add_cycle(station);
    cycle->amp_hours = amp_hours;
    cycle->watt_hours = watt_hours;
    return cycle;
}

QStringList warnings_shown(StationBench& bench)
{
    QStringList shown;
    for (const char* name :
         {"laBlankSerialNumber", "laBadSerialNumber", "laBlankName", "laBadName"})
        if (bench.widget<QLabel>(name)->isVisible())
            shown += name;
    return shown;
}
}  // namespace

void DisplayTest::names_have_their_warnings_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("serial_number");
    QTest::addColumn<QString>("warnings");
    QTest::addColumn<bool>("startable");
    add_row("both blank", "", "", "laBlankSerialNumber laBlankName", false);
    add_row("no name", "", "1042", "laBlankName", false);
    add_row("no number", "Pack A", "", "laBlankSerialNumber", false);
    add_row("both good", "Pack A", "1042", "", true);
    add_row("bad number", "Pack A", "10/42", "laBadSerialNumber", false);
    add_row("bad name", "Pack: A", "1042", "laBadName", false);
    add_row("both bad", "A*", "?", "laBadSerialNumber laBadName", false);
    add_row("beyond Latin-1", QString(QChar(0x416)), "1", "laBadName", false);
    add_row("Latin-1", QString::fromUtf8("Bär"), "1", "", true);
    add_row("dot behind the name", "Pack.", "1042", "", false);
    add_row("dot before the number", "Pack", ".1", "", false);
    add_row("only blanks", "  ", " ", "laBlankSerialNumber laBlankName", false);
}

void DisplayTest::names_have_their_warnings()
{
    QFETCH(QString, name);
    QFETCH(QString, serial_number);
    StationBench bench;
    bench.type_names(name, serial_number);
    QTEST(warnings_shown(bench).join(' '), "warnings");
    QTEST(bench.widget<QPushButton>("pbStartSkip")->isEnabled(), "startable");
}

void DisplayTest::start_needs_safe_names_and_an_instrument()
{
    StationBench bench;
    TestStation preview(nullptr, nullptr);
    preview.profile_name = "Pack A";
    preview.serial_number = "1042";
    preview.update_ui();
    QVERIFY(!preview.findChild<QPushButton*>("pbStartSkip")->isEnabled());
    bench.type_names("Pack A", "1042");
    QVERIFY(bench.widget<QPushButton>("pbStartSkip")->isEnabled());
    bench.type("leProfileName", "");
    QVERIFY(!bench.widget<QPushButton>("pbStartSkip")->isEnabled());
}

void DisplayTest::outside_of_the_first_phase_start_is_left_alone()
{
    StationBench bench;
    auto* button = bench.widget<QPushButton>("pbStartSkip");
    for (int phase = PHASE_CHARGING; phase <= PHASE_DONE; ++phase) {
        for (const bool enabled : {true, false}) {
            bench.station->phase = Phase(phase);
            button->setEnabled(enabled);
            bench.station->update_ui();
            QCOMPARE(button->isEnabled(), enabled);
        }
    }
}

void DisplayTest::the_identity_follows_the_instrument()
{
    StationBench bench;
    QCOMPARE(bench.text("laStationID"), QChar(0x2009) + QString("Station -1"));
    bench.receive("41.52", "0.0", "O");
    QCOMPARE(bench.text("laStationID"), QChar(0x2009) + QString("Station 7"));
}

void DisplayTest::the_cycle_is_counted_from_one()
{
    StationBench bench;
    QCOMPARE(bench.text("laCycleNumber"), QString("Cycle 0/1"));
    TestCycle* first = add_cycle(*bench.station);
    add_cycle(*bench.station);
    bench.station->number_of_cycles = 3;
    bench.station->update_ui();
    QCOMPARE(bench.text("laCycleNumber"), QString("Cycle 2/3"));
    bench.station->current_cycle = first;
    bench.station->update_ui();
    QCOMPARE(bench.text("laCycleNumber"), QString("Cycle 1/3"));
}

void DisplayTest::the_resistance_is_the_mean_of_all()
{
    StationBench bench;
    QCOMPARE(bench.text("laIntResistance"), in_milliohms("?"));
    add_cycle(*bench.station)->internal_resistance.add(0.5, 10.0);
    TestCycle* second = add_cycle(*bench.station);
    bench.station->update_ui();
    QCOMPARE(bench.text("laIntResistance"), in_milliohms("10"));
    second->internal_resistance.add(0.5, 16.0);
    second->internal_resistance.add(1.0, 22.0);
    bench.station->update_ui();
    QCOMPARE(bench.text("laIntResistance"), in_milliohms("16"));
}

void DisplayTest::totals_are_those_of_the_cycle()
{
    StationBench bench;
    QCOMPARE(bench.text("laCummAmpHours"), QString("? Ah"));
    QCOMPARE(bench.text("laCummAmpHours2"), QString("? Ah"));
    QCOMPARE(bench.text("laCummWattHours"), QString("? Wh"));
    add_cycle(*bench.station, 1.234, 45.678);
    bench.station->update_ui();
    QCOMPARE(bench.text("laCummAmpHours"), QString("1.23 Ah"));
    QCOMPARE(bench.text("laCummAmpHours2"), QString("1.23 Ah"));
    QCOMPARE(bench.text("laCummWattHours"), QString("45.68 Wh"));
}

void DisplayTest::totals_of_a_finished_cycle_stay_until_the_next_delivers()
{
    StationBench bench;
    TestCycle* first = add_cycle(*bench.station);
    bench.station->update_ui();
    QCOMPARE(bench.text("laCummAmpHours"), QString("0.00 Ah"));
    first->amp_hours = 5.0;
    first->watt_hours = 200.0;
    TestCycle* second = add_cycle(*bench.station);
    bench.station->update_ui();
    QCOMPARE(bench.text("laCummAmpHours"), QString("5.00 Ah"));
    QCOMPARE(bench.text("laCummAmpHours2"), QString("5.00 Ah"));
    QCOMPARE(bench.text("laCummWattHours"), QString("200.00 Wh"));
    second->amp_hours = 0.001;
    bench.station->update_ui();
    QCOMPARE(bench.text("laCummAmpHours"), QString("0.00 Ah"));
    QCOMPARE(bench.text("laCummWattHours"), QString("0.00 Wh"));
    add_cycle(*bench.station);
    second->amp_hours = 4.0;
    bench.station->update_ui();
    QCOMPARE(bench.text("laCummAmpHours"), QString("4.00 Ah"));
}

void DisplayTest::the_voltage_has_one_decimal_data()
{
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<QString>("text");
    QTest::newRow("rounded") << QByteArray("41.57") << "41.6 V";
    QTest::newRow("whole") << QByteArray("8") << "8.0 V";
    QTest::newRow("negative") << QByteArray("-1.25") << "-1.3 V";
    QTest::newRow("absurd") << QByteArray("1e9") << "1000000000.0 V";
}

void DisplayTest::the_voltage_has_one_decimal()
{
    QFETCH(QByteArray, field);
    QFETCH(QString, text);
    StationBench bench;
    bench.receive(field, "0.0", "O");
    QCOMPARE(bench.text("laVoltage"), text);
}

void DisplayTest::the_current_depends_on_the_phase_data()
{
    QTest::addColumn<int>("phase");
    QTest::addColumn<QString>("text");
    QTest::newRow("idle") << int(PHASE_IDLE) << "as it stood";
    QTest::newRow("charging") << int(PHASE_CHARGING) << "03h 05m 09s";
    QTest::newRow("levelled") << int(PHASE_CHARGING_LEVELED) << "03h 05m 09s";
    QTest::newRow("full charge test") << int(PHASE_FULL_CHARGE_TEST) << "as it stood";
    QTest::newRow("ready") << int(PHASE_READY_FOR_DISCHARGE) << "as it stood";
    QTest::newRow("discharging") << int(PHASE_DISCHARGING) << "9.98 A";
    QTest::newRow("resistance test") << int(PHASE_IR_TEST) << "9.98 A";
    QTest::newRow("recovery") << int(PHASE_IR_RECOVERY) << "9.98 A";
    QTest::newRow("final charge") << int(PHASE_FINAL_CHARGE) << "03h 05m 09s";
    QTest::newRow("final charge test") << int(PHASE_FINAL_CHARGE_TEST) << "as it stood";
    QTest::newRow("done") << int(PHASE_DONE) << "as it stood";
}

void DisplayTest::the_current_depends_on_the_phase()
{
    QFETCH(int, phase);
    QFETCH(QString, text);
    StationBench bench;
    bench.instrument->current = 9.984;
    bench.station->phase = Phase(phase);
    bench.station->leg_start_time = bench.clock.now.addSecs(-11109);
    bench.widget<QLabel>("laCurrent")->setText("as it stood");
    bench.station->update_ui();
    QCOMPARE(bench.text("laCurrent"), text);
}

void DisplayTest::elapsed_time_needs_a_log()
{
    StationBench bench;
    bench.station->leg_start_time = bench.clock.now.addSecs(-309);
    bench.station->update_ui();
    QCOMPARE(bench.text("laElapsedTime"), QString("0s"));
    bench.start();
    QCOMPARE(bench.text("laElapsedTime"), QString("00s"));
    bench.receive_after(309.0, "41.52", "0.0", "C");
    QCOMPARE(bench.text("laElapsedTime"), QString("05m 09s"));
    bench.receive_after(86400.0 - 309.0, "41.52", "0.0", "O");
    bench.station->leg_start_time = bench.clock.now.addSecs(-86400);
    bench.station->update_ui();
    QCOMPARE(bench.text("laElapsedTime"), QString("1d 00h 00m 00s"));
}

void DisplayTest::a_preview_shows_no_readings()
{
    StationBench bench;
    TestStation preview(nullptr, nullptr);
    const auto shown = [&preview](const char* label) {
        return preview.findChild<QLabel*>(label)->text();
    };
    QCOMPARE(shown("laPhase"), QString("Load Log File"));
    preview.data_log = new QFile(bench.path("shown.csv"));
    for (int phase = PHASE_IDLE; phase <= PHASE_DONE; ++phase) {
        preview.phase = Phase(phase);
        preview.update_ui();
        QCOMPARE(shown("laVoltage"), QString("? V"));
        QCOMPARE(shown("laCurrent"), QString("? A"));
        QVERIFY(preview.findChild<QLabel*>("laKestrometerStatus")->isHidden());
    }
    preview.phase = PHASE_IDLE;
    preview.update_ui();
    QCOMPARE(shown("laPhase"), QString("Preview"));
}

KEST_TEST(DisplayTest)
#include "tst_display.moc"
