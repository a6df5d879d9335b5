#include "station/test_station.h"
#include "support/station_bench.h"
#include "support/test_program.h"
#include "support/test_road.h"

#include <QtTest>

#include <functional>

/** Every way from phase to phase that one telemetry line can take, and every one that it must not. */
class TransitionsTest : public QObject
{
    Q_OBJECT

private slots:
    void a_line_takes_the_test_to_the_next_phase_data();
    void a_line_takes_the_test_to_the_next_phase();
};

namespace
{
using Arrange = std::function<void(TestStation&)>;

struct Line
{
    double after;  // seconds since the line before
    const char* voltage;
    const char* current;
    const char* state;
};

struct Row
{
    const char* name;
    Phase from;
    int discharges_before;
    Arrange arrange;
    Line line;
    Phase to;
    int new_cycles;
    QStringList events;
};

void nothing(TestStation&)
{
}

void prompt(TestStation& station)
{
    station.prompt_to_discharge = true;
}

/** All but the newest sample of a window that shows a level voltage. */
void almost_level(TestStation& station)
{
    station.charge_voltage_series.points.clear();
    for (int sample = 0; sample < 599; ++sample)
        station.charge_voltage_series.add(sample, 41.5);
}

void level(TestStation& station)
{
    station.detect_full_charge = true;
    almost_level(station);
}

void level_and_prompt(TestStation& station)
{
    level(station);
    prompt(station);
}

void no_detection(TestStation& station)
{
    station.detect_full_charge = false;
}

/** No leg is so short that this time is not over. */
void out_of_time(TestStation& station)
{
    station.max_charge_time = 0;
}

void out_of_time_and_prompt(TestStation& station)
{
    out_of_time(station);
    prompt(station);
}

void out_of_time_at_2_seconds(TestStation& station)
{
    station.max_charge_time = 2;
}

void measured_from_zero(TestStation& station)
{
    station.charge_test_voltage = 0.0;
}

void measured_from_zero_and_prompt(TestStation& station)
{
    measured_from_zero(station);
    prompt(station);
}

void nothing_delivered(TestStation& station)
{
    station.current_cycle->amp_hours = 0.0;
}

void nothing_delivered_nor_measured(TestStation& station)
{
    nothing_delivered(station);
    station.measure_internal_resistance = false;
}

Arrange resistance_test_at(double next_ir_check_ah)
{
    return [next_ir_check_ah](TestStation& station) {
        station.current_cycle->amp_hours = 2.0;
        station.next_ir_check_ah = next_ir_check_ah;
    };
}

Arrange cycles_wanted(int number_of_cycles)
{
    return [number_of_cycles](TestStation& station) {
        nothing_delivered(station);
        station.number_of_cycles = number_of_cycles;
    };
}

Arrange cutoff_at(double low_voltage_cutoff)
{
    return [low_voltage_cutoff](TestStation& station) {
        station.low_voltage_cutoff = low_voltage_cutoff;
    };
}

Arrange final_at(double final_voltage)
{
    return [final_voltage](TestStation& station) {
        station.final_voltage = final_voltage;
    };
}

const QString TO_CHARGING = "Switching to phase Charging because ";
const QString TO_LEVELED = TO_CHARGING;
const QString TO_FULL_CHARGE_TEST = "Switching to phase Full Charge Test because ";
const QString TO_FIRST_READY = "Switching to phase Ready for 0th Discharge because ";
const QString TO_THIRD_READY = "Switching to phase Ready for 2nd Discharge because ";
const QString TO_DISCHARGING = "Switching to phase Discharging because ";
const QString TO_IR_TEST = "Switching to phase IR Test because ";
const QString TO_IR_RECOVERY = "Switching to phase Recovering from IR Test because ";
const QString TO_FINAL_CHARGE = "Switching to phase Charging (final) because ";
const QString TO_FINAL_CHARGE_TEST = "Switching to phase Final Charge Test because ";
const QString TO_DONE = "Switching to phase Done because ";

const QString TIME_FIRST = "max charge time reached, first cycle";
const QString TIME_PROMPT = "max charge time reached, prompt_to_discharge = true";
const QString TIME_GO_ON = "max charge time reached, prompt_to_discharge = false";
const QString LEVEL = "voltage has leveled off";
const QString TIMER = "next_charge_test_timeout reached";
const QString RISE = "charging voltage drop >= 0.1v";
const QString FULL_FIRST = "charging voltage drop < 0.1v, first cycle";
const QString FULL_PROMPT = "charging voltage drop < 0.1v, prompt_to_discharge = true";
const QString FULL_GO_ON = "charging voltage drop < 0.1v, prompt_to_discharge = false";
const QString RECOVERED = "Finished recovering from IR test";

// A row is read as: in this phase, with so many discharges behind it and these changes, so long
// after the line before comes this line; it leads to this phase, by so many new cycles and these
// events.
// clang-format off
const QList<Row>& rows_before_the_discharge()
{
    static const QList<Row> table = {
        {"idle stays", PHASE_IDLE, 0, nothing, {1, "41.50", "10.0", "D"}, PHASE_IDLE, 0, {}},

        {"charge goes on", PHASE_CHARGING, 0, nothing, {1, "41.50", "1.0", "C"}, PHASE_CHARGING, 0, {}},
        {"charge at exactly its time", PHASE_CHARGING, 0, nothing, {21599, "41.50", "1.0", "C"}, PHASE_CHARGING, 0, {}},
        {"first charge out of time", PHASE_CHARGING, 0, nothing, {21599.001, "41.50", "1.0", "C"}, PHASE_DISCHARGING, 1, {TO_DISCHARGING + TIME_GO_ON}},
        {"first charge out of time, prompt", PHASE_CHARGING, 0, prompt, {21600, "41.50", "1.0", "C"}, PHASE_READY_FOR_DISCHARGE, 0, {TO_FIRST_READY + TIME_PROMPT}},
        {"second charge out of time", PHASE_CHARGING, 1, nothing, {21600, "41.50", "1.0", "C"}, PHASE_DISCHARGING, 1, {TO_DISCHARGING + TIME_FIRST}},
        {"second charge never prompts", PHASE_CHARGING, 1, prompt, {21600, "41.50", "1.0", "C"}, PHASE_DISCHARGING, 1, {TO_DISCHARGING + TIME_FIRST}},
        {"third charge out of time", PHASE_CHARGING, 2, nothing, {21600, "41.50", "1.0", "C"}, PHASE_DISCHARGING, 1, {TO_DISCHARGING + TIME_GO_ON}},
        {"third charge out of time, prompt", PHASE_CHARGING, 2, prompt, {21600, "41.50", "1.0", "C"}, PHASE_READY_FOR_DISCHARGE, 0, {TO_THIRD_READY + TIME_PROMPT}},
        {"charge level", PHASE_CHARGING, 0, level, {1, "41.50", "1.0", "C"}, PHASE_CHARGING_LEVELED, 0, {TO_LEVELED + LEVEL}},
        {"charge level, no detection", PHASE_CHARGING, 0, almost_level, {1, "41.50", "1.0", "C"}, PHASE_CHARGING, 0, {}},
        {"level overrides the prompt", PHASE_CHARGING, 0, level_and_prompt, {21600, "41.50", "1.0", "C"}, PHASE_CHARGING_LEVELED, 0, {TO_FIRST_READY + TIME_PROMPT, TO_LEVELED + LEVEL}},
        {"discharge overrides level", PHASE_CHARGING, 0, level, {21600, "41.50", "1.0", "C"}, PHASE_DISCHARGING, 1, {TO_DISCHARGING + TIME_GO_ON}},

        {"levelled charge goes on", PHASE_CHARGING_LEVELED, 0, nothing, {1, "41.50", "1.0", "C"}, PHASE_CHARGING_LEVELED, 0, {}},
        {"timer at exactly its time", PHASE_CHARGING_LEVELED, 0, nothing, {300, "41.50", "1.0", "C"}, PHASE_CHARGING_LEVELED, 0, {}},
        {"timer expired", PHASE_CHARGING_LEVELED, 0, nothing, {300.001, "41.50", "1.0", "C"}, PHASE_FULL_CHARGE_TEST, 0, {TO_FULL_CHARGE_TEST + TIMER}},
        {"timer expired, no detection", PHASE_CHARGING_LEVELED, 0, no_detection, {301, "41.50", "1.0", "C"}, PHASE_CHARGING_LEVELED, 0, {}},
        {"first levelled charge out of time", PHASE_CHARGING_LEVELED, 0, out_of_time, {1, "41.50", "1.0", "C"}, PHASE_DISCHARGING, 1, {TO_DISCHARGING + TIME_GO_ON}},
        {"first levelled charge out of time, prompt", PHASE_CHARGING_LEVELED, 0, out_of_time_and_prompt, {1, "41.50", "1.0", "C"}, PHASE_READY_FOR_DISCHARGE, 0, {TO_FIRST_READY + TIME_PROMPT}},
        {"second levelled charge never prompts", PHASE_CHARGING_LEVELED, 1, out_of_time_and_prompt, {1, "41.50", "1.0", "C"}, PHASE_DISCHARGING, 1, {TO_DISCHARGING + TIME_FIRST}},
        {"third levelled charge out of time, prompt", PHASE_CHARGING_LEVELED, 2, out_of_time_and_prompt, {1, "41.50", "1.0", "C"}, PHASE_READY_FOR_DISCHARGE, 0, {TO_THIRD_READY + TIME_PROMPT}},
        {"timer overrides the prompt", PHASE_CHARGING_LEVELED, 0, out_of_time_and_prompt, {301, "41.50", "1.0", "C"}, PHASE_FULL_CHARGE_TEST, 0, {TO_FIRST_READY + TIME_PROMPT, TO_FULL_CHARGE_TEST + TIMER}},
        {"timer overrides the discharge just begun", PHASE_CHARGING_LEVELED, 0, out_of_time, {301, "41.50", "1.0", "C"}, PHASE_FULL_CHARGE_TEST, 1, {TO_DISCHARGING + TIME_GO_ON, TO_FULL_CHARGE_TEST + TIMER}},

        {"charger not yet off", PHASE_FULL_CHARGE_TEST, 0, nothing, {1, "41.00", "0.0", "C"}, PHASE_FULL_CHARGE_TEST, 0, {}},
        {"unknown is not off", PHASE_FULL_CHARGE_TEST, 0, nothing, {1, "41.00", "0.0", "o"}, PHASE_FULL_CHARGE_TEST, 0, {}},
        {"no time limit while waiting", PHASE_FULL_CHARGE_TEST, 0, out_of_time, {90000, "41.00", "0.0", "C"}, PHASE_FULL_CHARGE_TEST, 0, {}},
        {"rise of exactly 0.1", PHASE_FULL_CHARGE_TEST, 0, measured_from_zero, {1, "0.1", "0.0", "O"}, PHASE_CHARGING_LEVELED, 0, {TO_LEVELED + RISE}},
        {"rise of more", PHASE_FULL_CHARGE_TEST, 0, nothing, {1, "41.70", "0.0", "O"}, PHASE_CHARGING_LEVELED, 0, {TO_LEVELED + RISE}},
        {"rise of less", PHASE_FULL_CHARGE_TEST, 0, measured_from_zero, {1, "0.0999", "0.0", "O"}, PHASE_DISCHARGING, 1, {TO_DISCHARGING + FULL_GO_ON}},
        {"rise of less, prompt", PHASE_FULL_CHARGE_TEST, 0, measured_from_zero_and_prompt, {1, "0.09", "0.0", "O"}, PHASE_READY_FOR_DISCHARGE, 0, {TO_FIRST_READY + FULL_PROMPT}},
        {"a fall counts as full", PHASE_FULL_CHARGE_TEST, 0, nothing, {1, "12.00", "0.0", "O"}, PHASE_DISCHARGING, 1, {TO_DISCHARGING + FULL_GO_ON}},
        {"second charge full", PHASE_FULL_CHARGE_TEST, 1, nothing, {1, "41.00", "0.0", "O"}, PHASE_DISCHARGING, 1, {TO_DISCHARGING + FULL_FIRST}},
        {"second charge full, never prompts", PHASE_FULL_CHARGE_TEST, 1, prompt, {1, "41.00", "0.0", "O"}, PHASE_DISCHARGING, 1, {TO_DISCHARGING + FULL_FIRST}},
        {"third charge full", PHASE_FULL_CHARGE_TEST, 2, nothing, {1, "41.00", "0.0", "O"}, PHASE_DISCHARGING, 1, {TO_DISCHARGING + FULL_GO_ON}},
        {"third charge full, prompt", PHASE_FULL_CHARGE_TEST, 2, prompt, {1, "41.00", "0.0", "O"}, PHASE_READY_FOR_DISCHARGE, 0, {TO_THIRD_READY + FULL_PROMPT}},

        {"only the operator leaves ready", PHASE_READY_FOR_DISCHARGE, 0, nothing, {90000, "1.00", "0.0", "O"}, PHASE_READY_FOR_DISCHARGE, 0, {}},
    };
    return table;
}

const QList<Row>& rows_from_the_discharge_on()
{
    static const QList<Row> table = {
        {"discharge goes on", PHASE_DISCHARGING, 0, nothing_delivered, {179, "40.00", "10.0", "D"}, PHASE_DISCHARGING, 0, {}},
        {"amp-hours at exactly the next check", PHASE_DISCHARGING, 0, nothing_delivered, {180, "40.00", "10.0", "D"}, PHASE_IR_TEST, 0, {TO_IR_TEST + "amp_hours (0.500) >= next_ir_check_ah (0.5)"}},
        {"resistance is not wanted", PHASE_DISCHARGING, 0, nothing_delivered_nor_measured, {3600, "40.00", "10.0", "D"}, PHASE_DISCHARGING, 0, {}},
        {"short number of amp-hours", PHASE_DISCHARGING, 0, resistance_test_at(2.0), {1, "40.00", "0.0", "D"}, PHASE_IR_TEST, 0, {TO_IR_TEST + "amp_hours (2.000) >= next_ir_check_ah (  2)"}},
        {"long number of amp-hours", PHASE_DISCHARGING, 0, resistance_test_at(1.23456789), {1, "40.00", "0.0", "D"}, PHASE_IR_TEST, 0, {TO_IR_TEST + "amp_hours (2.000) >= next_ir_check_ah (1.23457)"}},
        {"voltage at exactly the cutoff", PHASE_DISCHARGING, 0, nothing, {1, "19.00", "10.0", "D"}, PHASE_DISCHARGING, 0, {}},
        {"last discharge down", PHASE_DISCHARGING, 0, nothing, {1, "18.99", "10.0", "D"}, PHASE_FINAL_CHARGE, 0, {TO_FINAL_CHARGE + "voltage (18.99) < low_voltage_cutoff (19)"}},
        {"more cycles than wanted", PHASE_DISCHARGING, 1, cycles_wanted(1), {1, "18.99", "10.0", "D"}, PHASE_FINAL_CHARGE, 0, {TO_FINAL_CHARGE + "voltage (18.99) < low_voltage_cutoff (19)"}},
        {"first of two discharges down", PHASE_DISCHARGING, 0, cycles_wanted(2), {1, "18.99", "10.0", "D"}, PHASE_CHARGING, 0, {TO_CHARGING + "voltage (18.99) < low_voltage_cutoff (19)"}},
        {"second of two discharges down", PHASE_DISCHARGING, 1, nothing, {1, "18.99", "10.0", "D"}, PHASE_FINAL_CHARGE, 0, {TO_FINAL_CHARGE + "voltage (18.99) < low_voltage_cutoff (19)"}},
        {"one cycle more in the last discharge", PHASE_DISCHARGING, 1, cycles_wanted(3), {1, "18.99", "10.0", "D"}, PHASE_CHARGING, 0, {TO_CHARGING + "voltage (18.99) < low_voltage_cutoff (19)"}},
        {"short number of volts", PHASE_DISCHARGING, 0, cutoff_at(9.5), {1, "9.00", "10.0", "D"}, PHASE_FINAL_CHARGE, 0, {TO_FINAL_CHARGE + "voltage (  9) < low_voltage_cutoff (9.5)"}},
        {"long numbers of volts", PHASE_DISCHARGING, 0, cutoff_at(19.12345678), {1, "18.9876543", "10.0", "D"}, PHASE_FINAL_CHARGE, 0, {TO_FINAL_CHARGE + "voltage (18.9877) < low_voltage_cutoff (19.1235)"}},
        {"short cutoff", PHASE_DISCHARGING, 0, cutoff_at(1), {1, "-5.00", "10.0", "D"}, PHASE_FINAL_CHARGE, 0, {TO_FINAL_CHARGE + "voltage ( -5) < low_voltage_cutoff (1)"}},
        {"low voltage overrides the resistance test", PHASE_DISCHARGING, 0, nothing_delivered, {180, "18.00", "10.0", "D"}, PHASE_FINAL_CHARGE, 0, {TO_IR_TEST + "amp_hours (0.500) >= next_ir_check_ah (0.5)", TO_FINAL_CHARGE + "voltage ( 18) < low_voltage_cutoff (19)"}},
        {"low voltage overrides, more cycles", PHASE_DISCHARGING, 0, cycles_wanted(2), {180, "18.00", "10.0", "D"}, PHASE_CHARGING, 0, {TO_IR_TEST + "amp_hours (0.500) >= next_ir_check_ah (0.5)", TO_CHARGING + "voltage ( 18) < low_voltage_cutoff (19)"}},

        {"load not yet off", PHASE_IR_TEST, 0, nothing, {1, "41.00", "0.0", "D"}, PHASE_IR_TEST, 0, {}},
        {"off, but current flows", PHASE_IR_TEST, 0, nothing, {1, "41.00", "0.1", "O"}, PHASE_IR_TEST, 0, {}},
        {"off, at exactly the least current", PHASE_IR_TEST, 0, nothing, {1, "41.00", "0.01", "O"}, PHASE_IR_TEST, 0, {}},
        {"off, just below the least current", PHASE_IR_TEST, 0, nothing, {1, "41.00", "0.009", "O"}, PHASE_IR_RECOVERY, 0, {TO_IR_RECOVERY + "Completed IR Test, IR = 100.000"}},
        {"low voltage during the test", PHASE_IR_TEST, 0, nothing, {1, "1.00", "10.0", "D"}, PHASE_IR_TEST, 0, {}},
        {"botched test", PHASE_IR_TEST, 0, nothing, {1, "39.00", "0.0", "O"}, PHASE_IR_RECOVERY, 0, {"botched IR test, open circuit voltage = 39 V, closed circuit voltage = 40 V, I = 10 A, ir = -100 mOhm", TO_IR_RECOVERY + "Completed IR Test, IR = -100.000"}},

        {"load not yet back", PHASE_IR_RECOVERY, 0, nothing, {1, "39.00", "0.0", "O"}, PHASE_IR_RECOVERY, 0, {}},
        {"pack not yet down", PHASE_IR_RECOVERY, 0, nothing, {90000, "40.01", "10.0", "D"}, PHASE_IR_RECOVERY, 0, {}},
        {"pack down at exactly the voltage before", PHASE_IR_RECOVERY, 0, nothing, {1, "40.00", "10.0", "D"}, PHASE_DISCHARGING, 0, {TO_DISCHARGING + RECOVERED}},
        {"pack down below", PHASE_IR_RECOVERY, 0, nothing, {1, "39.00", "10.0", "D"}, PHASE_DISCHARGING, 0, {TO_DISCHARGING + RECOVERED}},
        {"pack down below the cutoff", PHASE_IR_RECOVERY, 0, nothing, {1, "18.00", "10.0", "D"}, PHASE_FINAL_CHARGE, 0, {TO_DISCHARGING + RECOVERED, TO_FINAL_CHARGE + "voltage ( 18) < low_voltage_cutoff (19)"}},
        {"pack down and the next test due", PHASE_IR_RECOVERY, 0, resistance_test_at(1.5), {1, "39.00", "0.0", "D"}, PHASE_IR_TEST, 0, {TO_DISCHARGING + RECOVERED, TO_IR_TEST + "amp_hours (2.000) >= next_ir_check_ah (1.5)"}},

        {"final charge goes on", PHASE_FINAL_CHARGE, 0, nothing, {299, "41.50", "1.0", "C"}, PHASE_FINAL_CHARGE, 0, {}},
        {"final charge at exactly its time", PHASE_FINAL_CHARGE, 0, out_of_time_at_2_seconds, {1, "41.50", "1.0", "C"}, PHASE_FINAL_CHARGE, 0, {}},
        {"final charge out of time", PHASE_FINAL_CHARGE, 0, out_of_time_at_2_seconds, {1.001, "41.50", "1.0", "C"}, PHASE_DONE, 0, {TO_DONE + "max charge time reached"}},
        {"final charge test due", PHASE_FINAL_CHARGE, 0, nothing, {299.001, "41.50", "1.0", "C"}, PHASE_FINAL_CHARGE_TEST, 0, {TO_FINAL_CHARGE_TEST + TIMER}},
        {"timer overrides done", PHASE_FINAL_CHARGE, 0, out_of_time, {300, "41.50", "1.0", "C"}, PHASE_FINAL_CHARGE_TEST, 0, {TO_DONE + "max charge time reached", TO_FINAL_CHARGE_TEST + TIMER}},

        {"any voltage is above the default", PHASE_FINAL_CHARGE_TEST, 0, nothing, {1, "0.01", "1.0", "C"}, PHASE_DONE, 0, {TO_DONE + "voltage (0.010) >= final_voltage (0.000)"}},
        {"above the final voltage", PHASE_FINAL_CHARGE_TEST, 0, final_at(37.5), {1, "37.51", "1.0", "C"}, PHASE_DONE, 0, {TO_DONE + "voltage (37.510) >= final_voltage (37.500)"}},
        {"at exactly the final voltage", PHASE_FINAL_CHARGE_TEST, 0, final_at(37.5), {1, "37.50", "1.0", "C"}, PHASE_FINAL_CHARGE, 0, {TO_FINAL_CHARGE + "voltage (37.500) < final_voltage (37.500)"}},
        {"below the final voltage", PHASE_FINAL_CHARGE_TEST, 0, final_at(37.5), {1, "37.4996", "1.0", "O"}, PHASE_FINAL_CHARGE, 0, {TO_FINAL_CHARGE + "voltage (37.500) < final_voltage (37.500)"}},
        {"no time limit in the final charge test", PHASE_FINAL_CHARGE_TEST, 0, final_at(50), {90000, "41.50", "1.0", "C"}, PHASE_FINAL_CHARGE, 0, {TO_FINAL_CHARGE + "voltage (41.500) < final_voltage (50.000)"}},

        {"done stays", PHASE_DONE, 0, out_of_time, {90000, "1.00", "0.0", "O"}, PHASE_DONE, 0, {}},
    };
    return table;
}

const QList<Row>& rows()
{
    static const QList<Row> table = rows_before_the_discharge() + rows_from_the_discharge_on();
    return table;
}
// clang-format on
}  // namespace

void TransitionsTest::a_line_takes_the_test_to_the_next_phase_data()
{
    QTest::addColumn<int>("index");
    for (int index = 0; index < rows().size(); ++index)
        QTest::newRow(rows().at(index).name) << index;
}

void TransitionsTest::a_line_takes_the_test_to_the_next_phase()
{
    QFETCH(int, index);
    const Row& row = rows().at(index);
    StationBench bench;
    bring_to(bench, row.from, row.discharges_before);
    const TestStation& station = *bench.station;
    const int cycles_before = station.cycles.size();
    const int events_before = events(bench).size();
    row.arrange(*bench.station);

    bench.receive_after(row.line.after, row.line.voltage, row.line.current, row.line.state);
    QCOMPARE(station.phase, row.to);
    QCOMPARE(station.cycles.size(), cycles_before + row.new_cycles);
    QCOMPARE(events(bench).mid(events_before), row.events);
    QVERIFY(bench.answers.seen.empty());
}

KEST_TEST(TransitionsTest)
#include "tst_transitions.moc"
