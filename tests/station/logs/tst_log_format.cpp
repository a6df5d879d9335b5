#include "station/logs/log_format.h"
#include "support/test_program.h"

#include "common/number_row.h"

#include <QtTest>

#include <limits>

/** The texts of both logs, byte for byte. */
class LogFormatTest : public QObject
{
    Q_OBJECT

private slots:
    void a_small_log_is_exact();
    void the_file_header_takes_names_as_they_are_data();
    void the_file_header_takes_names_as_they_are();
    void without_resistance_a_header_has_a_line_fewer();
    void each_flag_has_its_line_data();
    void each_flag_has_its_line();
    void hours_are_truncated_data();
    void hours_are_truncated();
    void parameters_have_six_digits_data();
    void parameters_have_six_digits();
    void values_of_a_section_begin_at_one_column();
    void charge_rows_data();
    void charge_rows();
    void discharge_rows_data();
    void discharge_rows();
    void a_resistance_of_exactly_zero_is_left_out_data();
    void a_resistance_of_exactly_zero_is_left_out();
    void an_event_is_stamped();
    void numbers_have_a_point_in_any_locale();
};

namespace
{
const double INF = std::numeric_limits<double>::infinity();
const double NAN_VALUE = std::numeric_limits<double>::quiet_NaN();

const QDateTime START(QDate(2020, 4, 3), QTime(9, 15, 2, 987));

LogFormat::Section section_of(int number, const QDateTime& start)
{
    LogFormat::Section section;
    section.number = number;
    section.start = start;
    section.parameters.max_charge_time = 8 * 3600;
    section.parameters.detect_full_charge = true;
    section.parameters.low_voltage_cutoff = 30.0;
    section.parameters.prompt_to_discharge = false;
    section.parameters.final_voltage = 37.5;
    section.parameters.measure_internal_resistance = true;
    section.parameters.internal_resistance_test_interval_ah = 0.5;
    return section;
}

QString line_of(const QString& header, const QString& label)
{
    for (const QString& line : header.split('\n'))
        if (line.startsWith(label))
            return line;
    return "(no such line)";
}

QString charge_row(double time, double voltage)
{
    NumberRow row;
    LogFormat::put_charge_row(row, time, voltage);
    return row.view().toString();
}

QString discharge_row(double time, double amp_hours, double voltage, double current, double ir)
{
    NumberRow row;
    LogFormat::put_discharge_row(row, time, amp_hours, voltage, current, ir);
    return row.view().toString();
}
}  // namespace

void LogFormatTest::a_small_log_is_exact()
{
    using namespace LogFormat;
    const QDate day(2020, 4, 3);
    const QString log =
        file_header("Pack A", "1042") +
        charge_section_header(section_of(1, {day, QTime(9, 15, 2)})) + charge_row(0.9, 41.52) +
        charge_row(1.9, 41.53) + discharge_section_header(section_of(1, {day, QTime(10, 2, 44)})) +
        discharge_row(1.0, 0.003, 40.97, 9.98, 0.0) + discharge_row(2.0, 0.006, 40.95, 9.99, 0.0) +
        discharge_row(181.2, 0.502, 40.11, 9.97, 0.014) +
        charge_section_header(section_of(2, {day, QTime(11, 40, 10)})) + charge_row(0.8, 38.02);
    QCOMPARE(log.toUtf8(), QByteArray("Kestrometer Log\n"
                                      "Battery Name:  Pack A\n"
                                      "Serial Number: 1042\n"
                                      "Charge Number:               1\n"
                                      "Timestamp:                   2020-04-03 09:15:02\n"
                                      "Max Charge Time (h):         8\n"
                                      "Detect Full Charge:          Yes\n"
                                      "Low Voltage Cutoff (V):      30\n"
                                      "Prompt to Discharge:         No\n"
                                      "Final Charge (V):            37.5\n"
                                      "Measure Internal Resistance: Yes\n"
                                      "Software Version:            v1.0.0b1, Apr 03 2020\n"
                                      "IR Test Interval (Ah):       0.5\n"
                                      "Time (s),Voltage (V)\n"
                                      "0.9,41.52\n"
                                      "1.9,41.53\n"
                                      "Discharge Number:            1\n"
                                      "Timestamp:                   2020-04-03 10:02:44\n"
                                      "Max Charge Time (h):         8\n"
                                      "Detect Full Charge:          Yes\n"
                                      "Low Voltage Cutoff (V):      30\n"
                                      "Prompt to Discharge:         No\n"
                                      "Final Charge (V):            37.5\n"
                                      "Measure Internal Resistance: Yes\n"
                                      "IR Test Interval (Ah):       0.5\n"
                                      "Time (s),Amp-Hours (Ah),Voltage (V),Current (A),IR (mOhms)\n"
                                      "1.0,0.003,40.97,9.98\n"
                                      "2.0,0.006,40.95,9.99\n"
                                      "181.2,0.502,40.11,9.97,0.014\n"
                                      "Charge Number:               2\n"
                                      "Timestamp:                   2020-04-03 11:40:10\n"
                                      "Max Charge Time (h):         8\n"
                                      "Detect Full Charge:          Yes\n"
                                      "Low Voltage Cutoff (V):      30\n"
                                      "Prompt to Discharge:         No\n"
                                      "Final Charge (V):            37.5\n"
                                      "Measure Internal Resistance: Yes\n"
                                      "Software Version:            v1.0.0b1, Apr 03 2020\n"
                                      "IR Test Interval (Ah):       0.5\n"
                                      "Time (s),Voltage (V)\n"
                                      "0.8,38.02\n"));
}

void LogFormatTest::the_file_header_takes_names_as_they_are_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("serial_number");
    add_row("usual", "Pack A", "1042");
    add_row("colons", "Pack: A", "10:42");
    add_row("markers", "%1 of %2", "%1%%L1");
    add_row("empty", "", "");
    QTest::newRow("letters of all kinds") << QString::fromUtf8("Bär 电池 🔋") << "Ω";
}

void LogFormatTest::the_file_header_takes_names_as_they_are()
{
    QFETCH(QString, name);
    QFETCH(QString, serial_number);
    QCOMPARE(LogFormat::file_header(name, serial_number),
             "Kestrometer Log\nBattery Name:  " + name + "\nSerial Number: " + serial_number +
                 "\n");
}

void LogFormatTest::without_resistance_a_header_has_a_line_fewer()
{
    LogFormat::Section section = section_of(1, START);
    const QString interval = "IR Test Interval (Ah):       0.5\n";
    const QString with_charge = LogFormat::charge_section_header(section);
    const QString with_discharge = LogFormat::discharge_section_header(section);
    section.parameters.measure_internal_resistance = false;
    const auto without = [&interval](QString text) {
        return text.remove(interval).replace("Resistance: Yes", "Resistance: No");
    };
    QCOMPARE(LogFormat::charge_section_header(section), without(with_charge));
    QCOMPARE(LogFormat::discharge_section_header(section), without(with_discharge));
    QCOMPARE(LogFormat::charge_section_header(section).count('\n'), 10);
    QCOMPARE(LogFormat::discharge_section_header(section).count('\n'), 9);
}

void LogFormatTest::each_flag_has_its_line_data()
{
    QTest::addColumn<bool>("detect");
    QTest::addColumn<bool>("prompt");
    QTest::addColumn<bool>("measure");
    QTest::newRow("detect") << true << false << false;
    QTest::newRow("prompt") << false << true << false;
    QTest::newRow("measure") << false << false << true;
}

void LogFormatTest::each_flag_has_its_line()
{
    QFETCH(bool, detect);
    QFETCH(bool, prompt);
    QFETCH(bool, measure);
    LogFormat::Section section;
    section.parameters.detect_full_charge = detect;
    section.parameters.prompt_to_discharge = prompt;
    section.parameters.measure_internal_resistance = measure;
    for (const QString& header : {LogFormat::charge_section_header(section),
                                  LogFormat::discharge_section_header(section)}) {
        const auto word = [](bool flag) {
            return QString(flag ? "Yes" : "No");
        };
        QCOMPARE(line_of(header, "Detect"), "Detect Full Charge:          " + word(detect));
        QCOMPARE(line_of(header, "Prompt"), "Prompt to Discharge:         " + word(prompt));
        QCOMPARE(line_of(header, "Measure"), "Measure Internal Resistance: " + word(measure));
    }
}

void LogFormatTest::hours_are_truncated_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<QString>("hours");
    QTest::newRow("whole") << 21600 << "6";
    QTest::newRow("one and a half") << 5400 << "1";
    QTest::newRow("just short of one") << 3599 << "0";
    QTest::newRow("negative") << -5400 << "-1";
    QTest::newRow("most") << std::numeric_limits<int>::max() << "596523";
}

void LogFormatTest::hours_are_truncated()
{
    QFETCH(int, seconds);
    QFETCH(QString, hours);
    LogFormat::Section section;
    section.parameters.max_charge_time = seconds;
    QCOMPARE(line_of(LogFormat::charge_section_header(section), "Max"),
             "Max Charge Time (h):         " + hours);
}

void LogFormatTest::parameters_have_six_digits_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("zero") << 0.0 << "0";
    QTest::newRow("whole") << 30.0 << "30";
    QTest::newRow("half") << 0.5 << "0.5";
    QTest::newRow("three decimals") << 37.125 << "37.125";
    QTest::newRow("seven digits") << 12.345678 << "12.3457";
    QTest::newRow("million") << 1000000.0 << "1e+06";
    QTest::newRow("small") << 0.00001 << "1e-05";
    QTest::newRow("negative") << -1.5 << "-1.5";
    QTest::newRow("huge") << 1e300 << "1e+300";
    QTest::newRow("infinite") << INF << "inf";
    QTest::newRow("not a number") << NAN_VALUE << "nan";
}

void LogFormatTest::parameters_have_six_digits()
{
    QFETCH(double, value);
    QFETCH(QString, text);
    LogFormat::Section section = section_of(1, START);
    section.parameters.low_voltage_cutoff = value;
    section.parameters.final_voltage = value;
    section.parameters.internal_resistance_test_interval_ah = value;
    for (const QString& header : {LogFormat::charge_section_header(section),
                                  LogFormat::discharge_section_header(section)}) {
        QCOMPARE(line_of(header, "Low"), "Low Voltage Cutoff (V):      " + text);
        QCOMPARE(line_of(header, "Final"), "Final Charge (V):            " + text);
        QCOMPARE(line_of(header, "IR Test"), "IR Test Interval (Ah):       " + text);
    }
}

void LogFormatTest::values_of_a_section_begin_at_one_column()
{
    const LogFormat::Section section = section_of(1, START);
    for (const QString& header : {LogFormat::charge_section_header(section),
                                  LogFormat::discharge_section_header(section)}) {
        const QStringList lines = header.split('\n');
        for (int i = 0; i < lines.size() - 2; ++i) {
            QCOMPARE(lines.at(i).at(28), QChar(' '));
            QVERIFY(lines.at(i).at(29) != ' ');
        }
    }
    QCOMPARE(line_of(LogFormat::charge_section_header(section), "Timestamp"),
             QString("Timestamp:                   2020-04-03 09:15:02"));
}

void LogFormatTest::charge_rows_data()
{
    QTest::addColumn<double>("time");
    QTest::addColumn<double>("voltage");
    QTest::addColumn<QString>("row");
    QTest::newRow("usual") << 0.9 << 41.52 << "0.9,41.52\n";
    QTest::newRow("a day") << 86400.04 << 8.0 << "86400.0,8.00\n";
    QTest::newRow("ties go up") << 0.25 << 0.125 << "0.3,0.13\n";
    QTest::newRow("ties below zero go down") << -0.25 << -0.125 << "-0.3,-0.13\n";
    QTest::newRow("ties beyond one") << 2.25 << 41.125 << "2.3,41.13\n";
    QTest::newRow("no tie in binary") << 0.15 << 1.005 << "0.1,1.00\n";
    QTest::newRow("nines") << 0.95 << 9.995 << "0.9,9.99\n";
    QTest::newRow("carried over") << 9.96 << 99.996 << "10.0,100.00\n";
    QTest::newRow("negative zero") << -0.0 << -0.0 << "0.0,0.00\n";
    QTest::newRow("rounded to zero from below") << -0.01 << -0.001 << "-0.0,-0.00\n";
    QTest::newRow("smallest") << 5e-324 << 5e-324 << "0.0,0.00\n";
    QTest::newRow("huge") << 1e15 << 1e21 << "1000000000000000.0,1000000000000000000000.00\n";
    QTest::newRow("infinite") << INF << -INF << "inf,-inf\n";
    QTest::newRow("not a number") << NAN_VALUE << NAN_VALUE << "nan,nan\n";
}

void LogFormatTest::charge_rows()
{
    QFETCH(double, time);
    QFETCH(double, voltage);
    QTEST(charge_row(time, voltage), "row");
}

void LogFormatTest::discharge_rows_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("row");
    QTest::newRow("usual") << 9.98 << "10.0,9.980,9.98,9.98,9.980\n";
    QTest::newRow("tie of three decimals") << 0.0625 << "0.1,0.063,0.06,0.06,0.063\n";
    QTest::newRow("tie of two decimals") << 0.125 << "0.1,0.125,0.13,0.13,0.125\n";
    QTest::newRow("below half an ohm's thousandth") << 0.0004 << "0.0,0.000,0.00,0.00,0.000\n";
    QTest::newRow("negative") << -0.014 << "-0.0,-0.014,-0.01,-0.01,-0.014\n";
    add_row("huge", 1e20,
            "100000000000000000000.0,100000000000000000000.000,"
            "100000000000000000000.00,100000000000000000000.00,"
            "100000000000000000000.000\n");
    QTest::newRow("infinite") << INF << "inf,inf,inf,inf,inf\n";
    QTest::newRow("not a number") << NAN_VALUE << "nan,nan,nan,nan,nan\n";
}

void LogFormatTest::discharge_rows()
{
    QFETCH(double, value);
    QTEST(discharge_row(value, value, value, value, value), "row");
}

void LogFormatTest::a_resistance_of_exactly_zero_is_left_out_data()
{
    QTest::addColumn<double>("ohms");
    QTest::addColumn<QString>("row");
    QTest::newRow("none") << 0.0 << "1.0,0.003,40.97,9.98\n";
    QTest::newRow("negative zero") << -0.0 << "1.0,0.003,40.97,9.98\n";
    QTest::newRow("fourteen milliohms") << 0.014 << "1.0,0.003,40.97,9.98,0.014\n";
    QTest::newRow("a botched test") << -0.02 << "1.0,0.003,40.97,9.98,-0.020\n";
    QTest::newRow("next to nothing") << 1e-300 << "1.0,0.003,40.97,9.98,0.000\n";
}

void LogFormatTest::a_resistance_of_exactly_zero_is_left_out()
{
    QFETCH(double, ohms);
    QTEST(discharge_row(1.0, 0.003, 40.97, 9.98, ohms), "row");
}

void LogFormatTest::an_event_is_stamped()
{
    QCOMPARE(LogFormat::event_line(START, "Switching to phase %1 because %2"),
             QString("2020-04-03 09:15:02 Switching to phase %1 because %2\n"));
    QCOMPARE(LogFormat::event_line(QDateTime(QDate(999, 1, 2), QTime(0, 0)), ""),
             QString("0999-01-02 00:00:00 \n"));
}

void LogFormatTest::numbers_have_a_point_in_any_locale()
{
    const QString row = discharge_row(1234567.5, 1234.5, 40.5, 9.5, 0.5);
    const QString header = LogFormat::charge_section_header(section_of(12345, START));
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    QCOMPARE(discharge_row(1234567.5, 1234.5, 40.5, 9.5, 0.5), row);
    QCOMPARE(LogFormat::charge_section_header(section_of(12345, START)), header);
    QCOMPARE(LogFormat::event_line(START, "x"), QString("2020-04-03 09:15:02 x\n"));
    QLocale::setDefault(QLocale::c());
    QCOMPARE(row, QString("1234567.5,1234.500,40.50,9.50,0.500\n"));
    QCOMPARE(line_of(header, "Charge N"), QString("Charge Number:               12345"));
}

KEST_GUILESS_TEST(LogFormatTest)
#include "tst_log_format.moc"
