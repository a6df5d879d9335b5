#include "station/logs/old_log_reader.h"
#include "support/log_loading.h"
#include "support/read_log.h"
#include "support/test_program.h"

#include <QtTest>

/** Data logs of the older, tab-separated generation. */
class OldLogReaderTest : public QObject
{
    Q_OBJECT

private slots:
    void a_whole_log_comes_back();
    void all_cycles_share_the_start_of_the_test();
    void a_header_alone_is_a_log_without_cycles();
    void what_the_format_does_not_know_keeps_its_value();
    void a_header_line_is_accepted_or_refused_data();
    void a_header_line_is_accepted_or_refused();
    void a_header_cut_off_is_refused();
    void header_values_are_restored_data();
    void header_values_are_restored();
    void the_start_may_be_no_date_at_all();
    void a_body_line_is_accepted_or_refused_data();
    void a_body_line_is_accepted_or_refused();
    void rows_outside_of_a_discharge_leave_no_point();
    void the_time_of_such_rows_counts_for_the_energy_of_none();
    void energy_starts_at_zero_with_each_discharge();
    void a_resistance_of_zero_or_below_is_left_out();
    void a_fifth_column_needs_no_fifth_title();
    void line_ends_of_either_kind_load();
};

namespace
{
/** The header's lines behind the mark, line 2 of the file first. */
const QList<QByteArray> HEADER = {
    "Charge Time (s):\t7200\tLV Cutoff\t30.5\t# Cycles:\t3\tFinal Voltage:\t37.5\tAutocycle\tTrue",
    "Battery Details:",
    "Battery Name:\tPack C\tSerial #:\t0815\tNominal V:\t36\tNominal Ah:\t10.5",
    "month/day/year/hour/minute/second:",
    "4_3_2016_9_15_2",
    "Time (s)\tAmp-Hours (Ah)\tVoltage (V)\tCurrent (A)",
};

QByteArray with_header(const QList<QByteArray>& lines, const QByteArray& body = QByteArray())
{
    return "Test Parameters:\n" + lines.join('\n') + '\n' + body;
}

QByteArray with_header(const QByteArray& body)
{
    return with_header(HEADER, body);
}

/** The header with one of its lines changed; `line` is that of the file. */
QByteArray with_line(int line, const QByteArray& text)
{
    QList<QByteArray> lines = HEADER;
    lines[line - 2] = text;
    return with_header(lines);
}

void add_header(const char* name, int line, const QByteArray& text, bool accepted)
{
    QTest::newRow(name) << line << text << accepted;
}

/** Line 2 with other values. */
QByteArray parameters(const QByteArray& seconds, const QByteArray& cutoff, const QByteArray& cycles,
                      const QByteArray& final_voltage, const QByteArray& autocycle)
{
    return "Charge Time (s):\t" + seconds + "\tLV Cutoff\t" + cutoff + "\t# Cycles:\t" + cycles +
           "\tFinal Voltage:\t" + final_voltage + "\tAutocycle\t" + autocycle;
}

void add_parameter_lines()
{
    const QByteArray& good = HEADER[0];
    add_header("parameters", 2, good, true);
    add_header("nine fields", 2, good.left(good.lastIndexOf('\t')), false);
    add_header("eleven fields", 2, good + "\t", false);
    for (const char* label :
         {"Charge Time (s):", "LV Cutoff", "# Cycles:", "Final Voltage:", "Autocycle"}) {
        const QByteArray shouted = QByteArray(label).toUpper();
        add_header(qPrintable(QString("label %1").arg(label)), 2,
                   QByteArray(good).replace(label, shouted + "!"), false);
    }
    add_header("a charge time with decimals", 2, parameters("7200.5", "1", "1", "1", "True"), true);
    add_header("a charge time in hexadecimal", 2, parameters("0x10", "1", "1", "1", "True"), true);
    add_header("a charge time that is empty", 2, parameters("", "1", "1", "1", "True"), false);
    add_header("a charge time of decimals alone", 2, parameters(".5", "1", "1", "1", "True"),
               false);
    add_header("a charge time beyond 32 bits", 2, parameters("4294967296", "1", "1", "1", "True"),
               false);
    add_header("a charge time with an exponent", 2, parameters("1e3", "1", "1", "1", "True"),
               false);
    add_header("a cutoff that is no number", 2, parameters("1", "x", "1", "1", "True"), false);
    add_header("a number of cycles with decimals", 2, parameters("1", "1", "1.0", "1", "True"),
               false);
    add_header("a huge number of cycles", 2, parameters("1", "1", "2147483647", "1", "True"), true);
    add_header("too huge a number of cycles", 2, parameters("1", "1", "2147483648", "1", "True"),
               false);
    add_header("a negative number of cycles", 2, parameters("1", "1", "-3", "1", "True"), true);
    add_header("a final voltage that is no number", 2, parameters("1", "1", "1", "", "True"),
               false);
    add_header("Autocycle False", 2, parameters("1", "1", "1", "1", "False"), true);
    add_header("Autocycle true", 2, parameters("1", "1", "1", "1", "true"), false);
    add_header("Autocycle Yes", 2, parameters("1", "1", "1", "1", "Yes"), false);
}

void add_fixed_lines()
{
    add_header("no details", 3, "Battery Details", false);
    add_header("details with a blank", 3, "Battery Details: ", false);
    add_header("a battery", 4, HEADER[2], true);
    add_header("a battery of seven fields", 4,
               "Battery Name:\tPack C\tSerial #:\t0815\tNominal V:\t36\tNominal Ah:", false);
    add_header("a battery of nine fields", 4, HEADER[2] + "\t1", false);
    add_header("a battery without names", 4,
               "Battery Name:\t\tSerial #:\t\tNominal V:\t36\tNominal Ah:\t10", true);
    for (const char* label : {"Battery Name:", "Serial #:", "Nominal V:", "Nominal Ah:"})
        add_header(qPrintable(QString("label %1").arg(label)), 4,
                   QByteArray(HEADER[2]).replace(label, "Label:"), false);
    add_header("nominal volts that are no number", 4,
               "Battery Name:\tA\tSerial #:\t1\tNominal V:\t36V\tNominal Ah:\t10", false);
    add_header("nominal amp-hours that are no number", 4,
               "Battery Name:\tA\tSerial #:\t1\tNominal V:\t36\tNominal Ah:\t", false);
    add_header("another line of units", 5, "month/day/year/hour/minute:", false);
    add_header("an empty line of units", 5, "", false);
}

void add_start_lines()
{
    add_header("leading zeros", 6, "04_03_2016_09_08_02", true);
    add_header("a month of 13", 6, "13_3_2016_9_15_2", true);
    add_header("every largest number", 6, "255_255_65535_255_255_255", true);
    add_header("hexadecimal", 6, "0x4_0b11_0x7E0_9_15_0o2", true);
    add_header("blanks around a number", 6, " 4_3 _2016_9_15_2", true);
    for (int part = 0; part < 6; ++part)
        for (const char* value :
             {"-1", "-0", "256", "65536", "", "x", "1.0", "0x-1", "99999999999"}) {
            QList<QByteArray> parts = HEADER[4].split('_');
            parts[part] = value;
            const bool year = part == 2 && QByteArray(value) == "256";
            QTest::addRow("part %d is '%s'", part, value) << 6 << parts.join('_') << year;
        }
    add_header("five parts", 6, "4_3_2016_9_15", false);
    add_header("seven parts", 6, "4_3_2016_9_15_2_0", false);
    add_header("blanks for underscores", 6, "4 3 2016 9 15 2", false);
}

void add_title_lines()
{
    const QByteArray& good = HEADER[5];
    add_header("four titles", 7, good, true);
    add_header("five titles", 7, good + "\tInternal Resistance", true);
    add_header("a fifth title with more around", 7, good + "\tMean Internal Resistance (Ohm)",
               true);
    add_header("a fifth title in lower case", 7, good + "\tinternal resistance", false);
    add_header("another fifth title", 7, good + "\tIR", false);
    add_header("three titles", 7, "Time (s)\tAmp-Hours (Ah)\tVoltage (V)", false);
    add_header("six titles", 7, good + "\tInternal Resistance\t", false);
    for (const char* title : {"Time (s)", "Amp-Hours (Ah)", "Voltage (V)", "Current (A)"})
        add_header(qPrintable(QString("title %1").arg(title)), 7,
                   QByteArray(good).replace(title, QByteArray(title) + " "), false);
}

void add_body(const char* name, const QByteArray& line, bool in_charge, bool in_discharge)
{
    QTest::newRow(name) << line << in_charge << in_discharge;
}
}  // namespace

void OldLogReaderTest::a_whole_log_comes_back()
{
    const ReadLog log(sample_log("older_two_cycles.csv"));
    QVERIFY(log.accepted);
    QCOMPARE(log.profile_name, QString("Pack C"));
    QCOMPARE(log.serial_number, QString("0815"));
    QCOMPARE(log.parameters.max_charge_time, 7200);
    QCOMPARE(log.parameters.low_voltage_cutoff, 30.5);
    QCOMPARE(log.parameters.number_of_cycles, 3);
    QCOMPARE(log.parameters.final_voltage, 37.5);
    QCOMPARE(log.parameters.prompt_to_discharge, false);
    QCOMPARE(int(log.cycles.size()), 2);
    const ReadCycle& first = log.cycle(0);
    QCOMPARE(first.voltage_vs_amphours.points,
             (QList<QPointF>{{0.003, 40.97}, {0.006, 40.95}, {0.502, 40.11}, {0.505, 40.10}}));
    QCOMPARE(first.current_vs_amphours.points,
             (QList<QPointF>{{0.003, 9.98}, {0.006, 9.99}, {0.502, 9.97}, {0.505, 9.97}}));
    QCOMPARE(first.internal_resistance.points, (QList<QPointF>{{0.502, 0.014 * 1000.0}}));
    QCOMPARE(first.amp_hours, 0.505);
    double watt_hours = (1.0 / 3600.0) * (40.97 * 0.5) * (9.98 * 0.5);
    watt_hours += ((2.0 - 1.0) / 3600.0) * ((40.97 + 40.95) * 0.5) * ((9.98 + 9.99) * 0.5);
    watt_hours += ((181.2 - 2.0) / 3600.0) * ((40.95 + 40.11) * 0.5) * ((9.99 + 9.97) * 0.5);
    watt_hours += ((182.2 - 181.2) / 3600.0) * ((40.11 + 40.10) * 0.5) * ((9.97 + 9.97) * 0.5);
    QVERIFY(same_bits(first.watt_hours, watt_hours));
    QCOMPARE(log.cycle(1).amp_hours, 1.6);
}

void OldLogReaderTest::all_cycles_share_the_start_of_the_test()
{
    const ReadLog log(sample_log("older_two_cycles.csv"));
    for (const ReadCycle& cycle : log.cycles)
        QCOMPARE(cycle.start_time, QDateTime(QDate(2016, 4, 3), QTime(9, 15, 2)));
}

void OldLogReaderTest::a_header_alone_is_a_log_without_cycles()
{
    const ReadLog log(with_header(HEADER));
    QVERIFY(log.accepted);
    QVERIFY(log.cycles.empty());
}

void OldLogReaderTest::what_the_format_does_not_know_keeps_its_value()
{
    const ReadLog log(sample_log("older_two_cycles.csv"));
    QCOMPARE(log.parameters.detect_full_charge, false);
    QCOMPARE(log.parameters.measure_internal_resistance, true);
    QCOMPARE(log.parameters.internal_resistance_test_interval_ah, 0.5);
}

void OldLogReaderTest::a_header_line_is_accepted_or_refused_data()
{
    QTest::addColumn<int>("line");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("accepted");
    add_parameter_lines();
    add_fixed_lines();
    add_start_lines();
    add_title_lines();
}

void OldLogReaderTest::a_header_line_is_accepted_or_refused()
{
    QFETCH(int, line);
    QFETCH(QByteArray, text);
    QFETCH(bool, accepted);
    QCOMPARE(ReadLog(with_line(line, text)).accepted, accepted);
}

void OldLogReaderTest::a_header_cut_off_is_refused()
{
    for (int lines = 0; lines < HEADER.size(); ++lines)
        QVERIFY(!ReadLog(with_header(HEADER.mid(0, lines))).accepted);
}

void OldLogReaderTest::header_values_are_restored_data()
{
    QTest::addColumn<QByteArray>("seconds");
    QTest::addColumn<QByteArray>("cycles");
    QTest::addColumn<QByteArray>("autocycle");
    QTest::addColumn<int>("max_charge_time");
    QTest::addColumn<int>("number_of_cycles");
    QTest::addColumn<bool>("prompt");
    add_row("plain", QByteArray("7200"), QByteArray("3"), QByteArray("True"), 7200, 3, false);
    QTest::newRow("decimals cut off")
        << QByteArray("7200.9") << QByteArray("1") << QByteArray("False") << 7200 << 1 << true;
    QTest::newRow("by prefix") << QByteArray("0x1F.5") << QByteArray("0b101") << QByteArray("False")
                               << 31 << 5 << true;
    QTest::newRow("no octal without its prefix")
        << QByteArray("010") << QByteArray("0o10") << QByteArray("True") << 10 << 8 << false;
}

void OldLogReaderTest::header_values_are_restored()
{
    QFETCH(QByteArray, seconds);
    QFETCH(QByteArray, cycles);
    QFETCH(QByteArray, autocycle);
    const ReadLog log(with_line(2, parameters(seconds, "1.5", cycles, "2.5", autocycle)));
    QVERIFY(log.accepted);
    QTEST(log.parameters.max_charge_time, "max_charge_time");
    QTEST(log.parameters.number_of_cycles, "number_of_cycles");
    QTEST(log.parameters.prompt_to_discharge, "prompt");
    QCOMPARE(log.parameters.low_voltage_cutoff, 1.5);
    QCOMPARE(log.parameters.final_voltage, 2.5);
}

void OldLogReaderTest::the_start_may_be_no_date_at_all()
{
    QList<QByteArray> lines = HEADER;
    lines[4] = "13_3_2016_9_15_2";
    const ReadLog log(with_header(lines, "Discharge cycle:\t1\n"));
    QVERIFY(log.accepted);
    QVERIFY(!log.cycle(0).start_time.isValid());
}

void OldLogReaderTest::a_body_line_is_accepted_or_refused_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<bool>("in_charge");
    QTest::addColumn<bool>("in_discharge");
    add_body("final charge", "Final Charge", true, true);
    add_body("test complete", "Test Complete", true, true);
    add_body("charge with a tab", "Charge cycle:\t2", true, true);
    add_body("charge with a blank", "Charge cycle: 2", true, true);
    add_body("charge without a number", "Charge cycle:", false, false);
    add_body("charge with a blank for a number", "Charge cycle: ", true, true);
    add_body("discharge with a tab", "Discharge cycle:\t99", true, true);
    add_body("discharge with a blank", "Discharge cycle: x", true, true);
    add_body("discharge with two tabs", "Discharge cycle:\t1\t2", false, false);
    add_body("an empty line", "", false, false);
    add_body("another word", "Done", false, false);
    add_body("final charge in lower case", "final charge", false, false);
    add_body("final charge with a blank", "Final Charge ", false, false);
    add_body("another marker", "Charge Number: 1", false, false);
    add_body("a row of two", "1.0\t0.003", false, false);
    add_body("a row of three", "1.0\t0.003\t40.97", false, false);
    add_body("a row of four", "1.0\t0.003\t40.97\t9.98", true, true);
    add_body("a row of five", "1.0\t0.003\t40.97\t9.98\t0.014", true, true);
    add_body("a row of six", "1.0\t0.003\t40.97\t9.98\t0.014\t", false, false);
    add_body("commas", "1.0,0.003,40.97,9.98", false, false);
    add_body("a time that is no number", "x\t0.003\t40.97\t9.98", false, false);
    add_body("amp-hours that are no number", "1.0\tx\t40.97\t9.98", false, false);
    add_body("a voltage that is no number", "1.0\t0.003\tx\t9.98", false, false);
    add_body("a current that is no number", "1.0\t0.003\t40.97\tx", false, false);
    add_body("a resistance that is no number", "1.0\t0.003\t40.97\t9.98\tx", true, false);
    add_body("a resistance that is empty", "1.0\t0.003\t40.97\t9.98\t", true, false);
    add_body("a row by way of a colon and a blank", "1.0\t0.003\t40.97: 9.98", false, false);
    add_body("numbers that are not finite", "nan\tinf\t-inf\tnan\tnan", true, true);
}

void OldLogReaderTest::a_body_line_is_accepted_or_refused()
{
    QFETCH(QByteArray, line);
    for (const QByteArray before : {"", "Charge cycle:\t1\n", "Test Complete\n", "Final Charge\n"})
        QTEST(ReadLog(with_header(before + line + "\n")).accepted, "in_charge");
    QTEST(ReadLog(with_header("Discharge cycle:\t1\n" + line + "\n")).accepted, "in_discharge");
}

void OldLogReaderTest::rows_outside_of_a_discharge_leave_no_point()
{
    const ReadLog log(with_header("1.0\t0.1\t40\t9\t0.01\nDischarge cycle:\t1\n1.0\t0.2\t40\t9\n"
                                  "Charge cycle:\t2\n1.0\t0.3\t40\t9\nFinal Charge\n"
                                  "1.0\t0.4\t40\t9\nTest Complete\n1.0\t0.5\t40\t9\t0.01\n"));
    QVERIFY(log.accepted);
    QCOMPARE(log.row_count(), 1);
    QCOMPARE(log.cycle(0).amp_hours, 0.2);
    QVERIFY(log.cycle(0).internal_resistance.points.isEmpty());
}

void OldLogReaderTest::the_time_of_such_rows_counts_for_the_energy_of_none()
{
    const ReadLog log(with_header("Charge cycle:\t1\n100.0\t0\t38\t5\nDischarge cycle:\t1\n"
                                  "3600.0\t1.0\t40\t10\nCharge cycle:\t2\n50.0\t0\t38\t5\n"));
    QVERIFY(log.accepted);
    QVERIFY(same_bits(log.cycle(0).watt_hours, 1.0 * 20.0 * 5.0));
}

void OldLogReaderTest::energy_starts_at_zero_with_each_discharge()
{
    const ReadLog log(with_header("Discharge cycle:\t1\n3600.0\t1.0\t40\t10\n"
                                  "Discharge cycle:\t2\n1800.0\t1.0\t40\t10\n"));
    QVERIFY(same_bits(log.cycle(0).watt_hours, 100.0));
    QVERIFY(same_bits(log.cycle(1).watt_hours, 50.0));
}

void OldLogReaderTest::a_resistance_of_zero_or_below_is_left_out()
{
    const ReadLog log(with_header("Discharge cycle:\t1\n1\t0.1\t40\t9\t0\n2\t0.2\t40\t9\t-0.01\n"
                                  "3\t0.3\t40\t9\tnan\n4\t0.4\t40\t9\t0.02\n"));
    QVERIFY(log.accepted);
    QCOMPARE(log.row_count(), 4);
    QCOMPARE(log.cycle(0).internal_resistance.points, (QList<QPointF>{{0.4, 20.0}}));
}

void OldLogReaderTest::a_fifth_column_needs_no_fifth_title()
{
    const ReadLog log(with_header("Discharge cycle:\t1\n1\t0.1\t40\t9\t0.01\n"));
    QVERIFY(log.accepted);
    QCOMPARE(log.cycle(0).internal_resistance.points.size(), 1);
}

void OldLogReaderTest::line_ends_of_either_kind_load()
{
    const ReadLog log(sample_log("older_two_cycles.csv").replace("\n", "\r\n"));
    QVERIFY(log.accepted);
    QVERIFY(log.same_as(ReadLog(sample_log("older_two_cycles.csv"))));
}

KEST_GUILESS_TEST(OldLogReaderTest)
#include "tst_old_log_reader.moc"
