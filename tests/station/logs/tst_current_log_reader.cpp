#include "station/logs/current_log_reader.h"
#include "support/log_loading.h"
#include "support/read_log.h"
#include "support/test_program.h"

#include <QtTest>

#include <limits>

/** Data logs of the current generation: what is understood, and every line that is not. */
class CurrentLogReaderTest : public QObject
{
    Q_OBJECT

private slots:
    void a_whole_log_comes_back();
    void each_discharge_becomes_a_cycle();
    void the_mark_alone_is_a_log_without_cycles();
    void a_file_header_alone_gives_name_and_number();
    void later_parameters_override_earlier_ones();
    void what_no_line_tells_keeps_its_value();
    void a_value_is_taken_as_it_stands_data();
    void a_value_is_taken_as_it_stands();
    void a_max_charge_time_is_hours_cut_to_seconds_data();
    void a_max_charge_time_is_hours_cut_to_seconds();
    void a_line_is_accepted_or_refused_data();
    void a_line_is_accepted_or_refused();
    void what_was_understood_stays_after_a_refusal();
    void the_timestamp_of_a_discharge_starts_its_cycle();
    void watt_hours_of_a_later_cycle_integrate_back_over_the_one_before();
    void a_resistance_of_zero_is_a_point();
    void charge_rows_are_not_parsed();
    void a_refused_row_adds_no_point();
    void a_discharge_without_rows_is_an_empty_cycle();
    void line_ends_of_either_kind_load();
};

namespace
{
const QByteArray MARK = "Kestrometer Log\n";
const QByteArray CHARGE = MARK + "Charge Number: 1\n";
const QByteArray DISCHARGE = MARK + "Discharge Number: 1\n";
constexpr int MOST = std::numeric_limits<int>::max();

void add_line(const char* name, const QByteArray& before, const char* line, bool accepted)
{
    QTest::newRow(name) << before << QByteArray(line) << accepted;
}

/** Keys as such, and what the numbers of the sections are compared with. */
void add_key_lines()
{
    add_line("an unknown key", MARK, "Battery Color: red", false);
    add_line("no key at all", MARK, ": red", false);
    add_line("a key in lower case", MARK, "battery name: A", false);
    add_line("blanks around a key", MARK, "  Battery Name \t: A", true);
    add_line("a name without a value", MARK, "Battery Name:", true);
    add_line("a serial number without a value", MARK, "Serial Number:", true);
    add_line("a name anywhere", DISCHARGE, "Battery Name: B", true);
    add_line("any software version", MARK, "Software Version: x, y: z", true);
    add_line("charge 1 of a test", MARK, "Charge Number: 1", true);
    add_line("charge 0", MARK, "Charge Number: 0", false);
    add_line("charge 2 too early", MARK, "Charge Number: 2", false);
    add_line("charge 01", MARK, "Charge Number: 01", false);
    add_line("charge +1", MARK, "Charge Number: +1", false);
    add_line("charge 1.0", MARK, "Charge Number: 1.0", false);
    add_line("a charge without a number", MARK, "Charge Number:", false);
    add_line("the same charge again", CHARGE, "Charge Number: 1", true);
    add_line("the next charge without a discharge", CHARGE, "Charge Number: 2", false);
    add_line("charge 2 behind discharge 1", DISCHARGE, "Charge Number: 2", true);
    add_line("charge 1 behind discharge 1", DISCHARGE, "Charge Number: 1", false);
    add_line("discharge 1 behind a charge without rows", CHARGE, "Discharge Number: 1", true);
    add_line("discharge 1 without a charge", MARK, "Discharge Number: 1", true);
    add_line("discharge 0", CHARGE, "Discharge Number: 0", false);
    add_line("discharge 2 too early", CHARGE, "Discharge Number: 2", false);
    add_line("discharge 01", CHARGE, "Discharge Number: 01", false);
    add_line("discharge 2 behind discharge 1", DISCHARGE, "Discharge Number: 2", true);
    add_line("discharge 1 again", DISCHARGE, "Discharge Number: 1", false);
}

void add_timestamp_lines()
{
    add_line("a timestamp before the first section", MARK, "Timestamp: 2020-04-03 09:15:02", false);
    add_line("a timestamp in a charge", CHARGE, "Timestamp: 2020-04-03 09:15:02", true);
    add_line("any timestamp in a charge", CHARGE, "Timestamp: yesterday", true);
    add_line("a timestamp in a discharge", DISCHARGE, "Timestamp: 2020-04-03 09:15:02", true);
    add_line("a timestamp with milliseconds", DISCHARGE, "Timestamp: 2020-04-03 09:15:02.500",
             true);
    add_line("a timestamp without seconds", DISCHARGE, "Timestamp: 2020-04-03 09:15", true);
    add_line("a timestamp without a time", DISCHARGE, "Timestamp: 2020-04-03", true);
    add_line("month 13 in a discharge", DISCHARGE, "Timestamp: 2020-13-03 09:15:02", false);
    add_line("a word in a discharge", DISCHARGE, "Timestamp: yesterday", false);
    // As the toolkit sees it, an empty text of an empty format is the start of 1900.
    add_line("no timestamp in a discharge", DISCHARGE, "Timestamp:", true);
}

/** Parameters are read in every section and in none. */
void add_parameter_lines()
{
    for (const QByteArray key :
         {"Detect Full Charge", "Prompt to Discharge", "Measure Internal Resistance"}) {
        for (const QByteArray value : {"Yes", "No"})
            QTest::newRow(key + " " + value) << MARK << key + ": " + value << true;
        for (const QByteArray value : {"yes", "NO", "True", "1", "Yes No", ""})
            QTest::newRow(key + " '" + value + "'") << MARK << key + ": " + value << false;
    }
    for (const QByteArray key : {"Max Charge Time (h)", "Low Voltage Cutoff (V)",
                                 "IR Test Interval (Ah)", "Final Charge (V)"}) {
        for (const QByteArray value : {"8", "8.25", "-1", "+2", "1e3", ".5", "5.", "inf", "nan"})
            QTest::newRow(key + " " + value) << MARK << key + ": " + value << true;
        for (const QByteArray value : {"", "8 h", "8,5", "eight", "0x10", "1e999", "--1"})
            QTest::newRow(key + " '" + value + "'") << MARK << key + ": " + value << false;
        QTest::newRow(key + " in a charge") << CHARGE << key + ": 1" << true;
        QTest::newRow(key + " in a discharge") << DISCHARGE << key + ": 1" << true;
    }
}

void add_row_lines()
{
    add_line("an empty line before the first section", MARK, "", false);
    add_line("an empty line in a charge", CHARGE, "", false);
    add_line("an empty line in a discharge", DISCHARGE, "", false);
    add_line("a row before the first section", MARK, "0.9,41.52", false);
    add_line("titles before the first section", MARK, "Time (s),Voltage (V)", false);
    add_line("a row in a charge", CHARGE, "0.9,41.52", true);
    add_line("titles in a charge", CHARGE, "Time (s),Voltage (V)", true);
    add_line("two columns of anything in a charge", CHARGE, "x,", true);
    add_line("one column in a charge", CHARGE, "0.9", false);
    add_line("three columns in a charge", CHARGE, "0.9,41.52,1", false);
    add_line("titles in a discharge", DISCHARGE,
             "Time (s),Amp-Hours (Ah),Voltage (V),Current (A),IR (mOhms)", true);
    add_line("titles of four columns", DISCHARGE, "Time (s),x,y,z", true);
    add_line("titles of three columns", DISCHARGE, "Time (s),x,y", false);
    add_line("titles of six columns", DISCHARGE, "Time (s),a,b,c,d,e", false);
    add_line("titles with a blank in front", DISCHARGE, " Time (s),x,y,z", false);
    add_line("a row of two columns in a discharge", DISCHARGE, "0.9,41.52", false);
    add_line("a row of three columns", DISCHARGE, "1.0,0.003,40.97", false);
    add_line("a row of four columns", DISCHARGE, "1.0,0.003,40.97,9.98", true);
    add_line("a row of five columns", DISCHARGE, "1.0,0.003,40.97,9.98,0.014", true);
    add_line("a row of six columns", DISCHARGE, "1.0,0.003,40.97,9.98,0.014,1", false);
    add_line("a comma at the end of four columns", DISCHARGE, "1.0,0.003,40.97,9.98,", false);
    add_line("a comma at the end of five columns", DISCHARGE, "1.0,0.003,40.97,9.98,1,", false);
    add_line("a comma in front", DISCHARGE, ",1.0,0.003,40.97,9.98", false);
    add_line("a comma alone", DISCHARGE, ",", false);
    add_line("a row with a colon", DISCHARGE, "1.0,0.003,40.97,9:98", false);
    add_line("a time that is no number", DISCHARGE, "x,0.003,40.97,9.98", false);
    add_line("amp-hours that are no number", DISCHARGE, "1.0,x,40.97,9.98", false);
    add_line("a voltage that is no number", DISCHARGE, "1.0,0.003,x,9.98", false);
    add_line("a current that is no number", DISCHARGE, "1.0,0.003,40.97,x", false);
    add_line("a resistance that is no number", DISCHARGE, "1.0,0.003,40.97,9.98,x", false);
    add_line("a point at the end", DISCHARGE, "1.0,0.003,40.97,9.", true);
    add_line("a point in front", DISCHARGE, ".5,.003,40.97,9.98,.014", true);
    add_line("a point alone", DISCHARGE, "1.0,.,40.97,9.98", false);
    add_line("two points", DISCHARGE, "1.0,0.0.3,40.97,9.98", false);
    add_line("exponents", DISCHARGE, "1e0,3e-3,4.097E1,9.98", true);
    add_line("negative numbers", DISCHARGE, "-1.0,-0.003,-40.97,-9.98,-0.014", true);
    add_line("blanks around numbers", DISCHARGE, " 1.0 ,0.003, 40.97,9.98 ", true);
    add_line("a blank within a number", DISCHARGE, "1 0,0.003,40.97,9.98", false);
    add_line("numbers that are not finite", DISCHARGE, "nan,inf,-inf,nan", true);
    add_line("a number beyond a double", DISCHARGE, "1.0,0.003,1e999,9.98", false);
    add_line("a number too small for a double", DISCHARGE, "1.0,0.003,1e-999,9.98", false);
    add_line("twenty digits", DISCHARGE, "1.0,0.00300000000000000000001,40.97,9.98", true);
}
}  // namespace

void CurrentLogReaderTest::a_whole_log_comes_back()
{
    const ReadLog log(sample_log("current_one_cycle.csv"));
    QVERIFY(log.accepted);
    QCOMPARE(log.profile_name, QString("Pack A"));
    QCOMPARE(log.serial_number, QString("1042"));
    QCOMPARE(log.parameters.max_charge_time, 28800);
    QCOMPARE(log.parameters.detect_full_charge, true);
    QCOMPARE(log.parameters.low_voltage_cutoff, 30.0);
    QCOMPARE(log.parameters.prompt_to_discharge, false);
    QCOMPARE(log.parameters.final_voltage, 37.5);
    QCOMPARE(log.parameters.measure_internal_resistance, true);
    QCOMPARE(log.parameters.internal_resistance_test_interval_ah, 0.5);
    QCOMPARE(int(log.cycles.size()), 1);
    const ReadCycle& cycle = log.cycle(0);
    QCOMPARE(cycle.start_time, QDateTime(QDate(2020, 4, 3), QTime(10, 2, 44)));
    QCOMPARE(cycle.voltage_vs_amphours.points,
             (QList<QPointF>{{0.003, 40.97}, {0.006, 40.95}, {0.502, 40.11}}));
    QCOMPARE(cycle.current_vs_amphours.points,
             (QList<QPointF>{{0.003, 9.98}, {0.006, 9.99}, {0.502, 9.97}}));
    QCOMPARE(cycle.internal_resistance.points, (QList<QPointF>{{0.502, 0.014 * 1000.0}}));
    QCOMPARE(cycle.amp_hours, 0.502);
    double watt_hours = (1.0 / 3600.0) * (9.98 * 0.5) * (40.97 * 0.5);
    watt_hours += ((2.0 - 1.0) / 3600.0) * ((9.98 + 9.99) * 0.5) * ((40.97 + 40.95) * 0.5);
    watt_hours += ((181.2 - 2.0) / 3600.0) * ((9.99 + 9.97) * 0.5) * ((40.95 + 40.11) * 0.5);
    QVERIFY(same_bits(cycle.watt_hours, watt_hours));
}

void CurrentLogReaderTest::each_discharge_becomes_a_cycle()
{
    const ReadLog log(sample_log("current_two_cycles.csv"));
    QVERIFY(log.accepted);
    QCOMPARE(int(log.cycles.size()), 2);
    QCOMPARE(log.cycle(0).amp_hours, 9.981);
    QCOMPARE(log.cycle(0).start_time, QDateTime(QDate(2020, 4, 3), QTime(10, 2, 44)));
    QCOMPARE(log.cycle(1).amp_hours, 0.253);
    QCOMPARE(log.cycle(1).start_time, QDateTime(QDate(2020, 4, 3), QTime(13, 0)));
    QCOMPARE(log.cycle(0).voltage_vs_amphours.points.size(), 2);
    QCOMPARE(log.cycle(1).voltage_vs_amphours.points.size(), 3);
}

void CurrentLogReaderTest::the_mark_alone_is_a_log_without_cycles()
{
    const ReadLog log(MARK);
    QVERIFY(log.accepted);
    QVERIFY(log.cycles.empty());
    QVERIFY(ReadLog("Kestrometer Log").accepted);
}

void CurrentLogReaderTest::a_file_header_alone_gives_name_and_number()
{
    const ReadLog log(MARK + "Battery Name:  Pack: B \nSerial Number:  7 \n");
    QVERIFY(log.accepted);
    // Only the first colon splits; blanks at the ends are lost.
    QCOMPARE(log.profile_name, QString("Pack: B"));
    QCOMPARE(log.serial_number, QString("7"));
    QVERIFY(log.cycles.empty());
}

void CurrentLogReaderTest::later_parameters_override_earlier_ones()
{
    const ReadLog log(sample_log("current_two_cycles.csv"));
    QCOMPARE(log.parameters.max_charge_time, 6 * 3600);
    QCOMPARE(log.parameters.detect_full_charge, false);
    QCOMPARE(log.parameters.low_voltage_cutoff, 28.5);
    QCOMPARE(log.parameters.prompt_to_discharge, false);
    QCOMPARE(log.parameters.final_voltage, 36.0);
    QCOMPARE(log.parameters.measure_internal_resistance, true);
    QCOMPARE(log.parameters.internal_resistance_test_interval_ah, 0.25);
}

void CurrentLogReaderTest::what_no_line_tells_keeps_its_value()
{
    const ReadLog log(MARK);
    QCOMPARE(log.parameters.number_of_cycles, 1);
    QCOMPARE(log.parameters.max_charge_time, 21600);
    QCOMPARE(log.parameters.internal_resistance_test_interval_ah, 0.5);
    const ReadLog without_interval(MARK + "Measure Internal Resistance: No\n");
    QCOMPARE(without_interval.parameters.measure_internal_resistance, false);
    QCOMPARE(without_interval.parameters.internal_resistance_test_interval_ah, 0.5);
}

void CurrentLogReaderTest::a_value_is_taken_as_it_stands_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<double>("value");
    QTest::newRow("a whole number") << QByteArray("30") << 30.0;
    QTest::newRow("a fraction") << QByteArray("37.5") << 37.5;
    QTest::newRow("an exponent") << QByteArray("1e+06") << 1e6;
    QTest::newRow("negative") << QByteArray("-0.25") << -0.25;
    QTest::newRow("blanks around") << QByteArray("  \t1.5 \t") << 1.5;
}

void CurrentLogReaderTest::a_value_is_taken_as_it_stands()
{
    QFETCH(QByteArray, text);
    QFETCH(double, value);
    const ReadLog log(MARK + "Low Voltage Cutoff (V):" + text + "\nFinal Charge (V):" + text +
                      "\nIR Test Interval (Ah):" + text + "\n");
    QVERIFY(log.accepted);
    QCOMPARE(log.parameters.low_voltage_cutoff, value);
    QCOMPARE(log.parameters.final_voltage, value);
    QCOMPARE(log.parameters.internal_resistance_test_interval_ah, value);
}

void CurrentLogReaderTest::a_max_charge_time_is_hours_cut_to_seconds_data()
{
    QTest::addColumn<QByteArray>("hours");
    QTest::addColumn<int>("seconds");
    QTest::newRow("8") << QByteArray("8") << 28800;
    QTest::newRow("1.5") << QByteArray("1.5") << 5400;
    QTest::newRow("0.0009") << QByteArray("0.0009") << 3;
    QTest::newRow("-0.0009") << QByteArray("-0.0009") << -3;
    QTest::newRow("1e9") << QByteArray("1e9") << MOST;
    QTest::newRow("-1e300") << QByteArray("-1e300") << -MOST - 1;
    QTest::newRow("inf") << QByteArray("inf") << MOST;
    QTest::newRow("nan") << QByteArray("nan") << 0;
}

void CurrentLogReaderTest::a_max_charge_time_is_hours_cut_to_seconds()
{
    QFETCH(QByteArray, hours);
    const ReadLog log(MARK + "Max Charge Time (h): " + hours + "\n");
    QVERIFY(log.accepted);
    QTEST(log.parameters.max_charge_time, "seconds");
}

void CurrentLogReaderTest::a_line_is_accepted_or_refused_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<bool>("accepted");
    add_key_lines();
    add_timestamp_lines();
    add_parameter_lines();
    add_row_lines();
}

void CurrentLogReaderTest::a_line_is_accepted_or_refused()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, line);
    QFETCH(bool, accepted);
    QVERIFY(ReadLog(before).accepted);
    QCOMPARE(ReadLog(before + line + "\n").accepted, accepted);
    // Refused where it stands, whatever follows.
    const QByteArray harmless = "Software Version: 1\n";
    QCOMPARE(ReadLog(before + line + "\n" + harmless).accepted, accepted);
    // An empty line without its end is no line.
    QCOMPARE(ReadLog(before + line).accepted, accepted || line.isEmpty());
}

void CurrentLogReaderTest::what_was_understood_stays_after_a_refusal()
{
    const ReadLog log(DISCHARGE + "Battery Name: A\n1.0,0.003,40.97,9.98\nFinal Charge (V): x\n"
                                  "Serial Number: 7\n");
    QVERIFY(!log.accepted);
    QCOMPARE(log.profile_name, QString("A"));
    QCOMPARE(log.parameters.final_voltage, 0.0);
    QCOMPARE(log.serial_number, QString());
    QCOMPARE(log.row_count(), 1);
}

void CurrentLogReaderTest::the_timestamp_of_a_discharge_starts_its_cycle()
{
    const ReadLog log(CHARGE + "Timestamp: 2020-04-03 09:15:02\nDischarge Number: 1\n"
                               "Timestamp: 2020-04-03 10:02:44.987\nCharge Number: 2\n"
                               "Timestamp: 2020-04-03 12:00:00\n");
    QVERIFY(log.accepted);
    QCOMPARE(log.cycle(0).start_time, QDateTime(QDate(2020, 4, 3), QTime(10, 2, 44)));
}

void CurrentLogReaderTest::watt_hours_of_a_later_cycle_integrate_back_over_the_one_before()
{
    const ReadLog log(DISCHARGE + "3600.0,10.000,40.00,10.00\nCharge Number: 2\n0.8,38.02\n"
                                  "Discharge Number: 2\n1.0,0.003,41.00,9.00\n");
    QVERIFY(log.accepted);
    QVERIFY(same_bits(log.cycle(0).watt_hours, 1.0 * (10.0 * 0.5) * (40.0 * 0.5)));
    const double backwards = ((1.0 - 3600.0) / 3600.0) * (19.0 * 0.5) * (81.0 * 0.5);
    QVERIFY(same_bits(log.cycle(1).watt_hours, backwards));
}

void CurrentLogReaderTest::a_resistance_of_zero_is_a_point()
{
    const ReadLog log(DISCHARGE + "1.0,0.003,40.97,9.98,0.000\n2.0,0.006,40.95,9.99,-0.002\n"
                                  "3.0,0.009,40.95,9.99\n");
    QVERIFY(log.accepted);
    QCOMPARE(log.cycle(0).internal_resistance.points,
             (QList<QPointF>{{0.003, 0.0}, {0.006, -2.0}}));
}

void CurrentLogReaderTest::charge_rows_are_not_parsed()
{
    const ReadLog log(CHARGE + "anything,at all\n0.9,41.52\n");
    QVERIFY(log.accepted);
    QVERIFY(log.cycles.empty());
}

void CurrentLogReaderTest::a_refused_row_adds_no_point()
{
    const ReadLog log(DISCHARGE + "1.0,0.003,40.97,9.98\n2.0,0.006,40.95,x\n");
    QVERIFY(!log.accepted);
    QCOMPARE(log.row_count(), 1);
}

void CurrentLogReaderTest::a_discharge_without_rows_is_an_empty_cycle()
{
    const ReadLog log(DISCHARGE + "Charge Number: 2\n");
    QVERIFY(log.accepted);
    QCOMPARE(int(log.cycles.size()), 1);
    QCOMPARE(log.row_count(), 0);
    QCOMPARE(log.cycle(0).watt_hours, 0.0);
    QVERIFY(!log.cycle(0).start_time.isValid());
}

void CurrentLogReaderTest::line_ends_of_either_kind_load()
{
    for (const char* name : {"current_one_cycle.csv", "current_two_cycles.csv"}) {
        const QByteArray unix_log = sample_log(name);
        const ReadLog log(QByteArray(unix_log).replace("\n", "\r\n"));
        QVERIFY(log.accepted);
        QVERIFY(log.same_as(ReadLog(unix_log)));
    }
}

KEST_GUILESS_TEST(CurrentLogReaderTest)
#include "tst_current_log_reader.moc"
