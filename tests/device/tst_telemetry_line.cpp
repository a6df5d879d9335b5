#include "device/telemetry_line.h"
#include "support/test_program.h"

#include <QtTest>

#include <limits>

class TelemetryLineTest : public QObject
{
    Q_OBJECT

private slots:
    void valid_lines_are_read_data();
    void valid_lines_are_read();
    void invalid_lines_end_at_the_field_that_fails_data();
    void invalid_lines_end_at_the_field_that_fails();
    void numbers_that_are_not_finite_are_numbers();
};

void TelemetryLineTest::valid_lines_are_read_data()
{
    QTest::addColumn<QString>("line");
    add_columns<double>({"voltage", "current"});
    QTest::addColumn<int>("id");
    QTest::addColumn<KestrometerState>("state");
    const auto row = [](const char* name, const char* line, double voltage, double current, int id,
                        KestrometerState state) {
        QTest::newRow(name) << QString::fromUtf8(line) << voltage << current << id << state;
    };
    row("charging", "x\t48.02\t3.1\tx\tx\tID=7\tC", 48.02, 3.1, 7, Charging);
    row("discharging", "x\t48.02\t3.1\tx\tx\tID=7\tD", 48.02, 3.1, 7, Discharging);
    row("off", "x\t48.02\t3.1\tx\tx\tID=7\tO", 48.02, 3.1, 7, Off);
    row("another letter", "x\t48.02\t3.1\tx\tx\tID=7\tX", 48.02, 3.1, 7, Unknown);
    row("a small letter", "x\t48.02\t3.1\tx\tx\tID=7\tc", 48.02, 3.1, 7, Unknown);
    row("a letter beyond Latin-1", "x\t48.02\t3.1\tx\tx\tID=7\t\xE2\x82\xAC", 48.02, 3.1, 7,
        Unknown);
    row("a blank as letter", "x\t48.02\t3.1\tx\tx\tID=7\t ", 48.02, 3.1, 7, Unknown);
    row("empty fields that are not read", "\t1\t2\t\t\tID=7\tO", 1.0, 2.0, 7, Off);
    row("anything in fields not read", "ID=9\t1\t2\tC\t#\tID=7\tO", 1.0, 2.0, 7, Off);
    row("negative", "x\t-48.02\t-3.1\tx\tx\tID=-7\tO", -48.02, -3.1, -7, Off);
    row("absurd", "x\t1e308\t-1e308\tx\tx\tID=7\tO", 1e308, -1e308, 7, Off);
    row("other forms of numbers", "x\t+48.\t.5e1\tx\tx\tID=+7\tO", 48.0, 5.0, 7, Off);
    row("blanks around numbers", "x\t 48.02 \t 3.1 \tx\tx\tID= 7 \tO", 48.02, 3.1, 7, Off);
    row("hexadecimal ID", "x\t1\t2\tx\tx\tID=0x1F\tO", 1.0, 2.0, 31, Off);
    row("binary ID", "x\t1\t2\tx\tx\tID=0b101\tO", 1.0, 2.0, 5, Off);
    row("octal ID", "x\t1\t2\tx\tx\tID=0o17\tO", 1.0, 2.0, 15, Off);
    row("leading zero is decimal", "x\t1\t2\tx\tx\tID=010\tO", 1.0, 2.0, 10, Off);
    row("ID without its mark", "x\t1\t2\tx\tx\t7\tO", 1.0, 2.0, 7, Off);
    row("mark behind", "x\t1\t2\tx\tx\t7ID=\tO", 1.0, 2.0, 7, Off);
    row("mark within", "x\t1\t2\tx\tx\t1ID=2\tO", 1.0, 2.0, 12, Off);
    row("mark twice", "x\t1\t2\tx\tx\tID=ID=7\tO", 1.0, 2.0, 7, Off);
    row("nine digits", "x\t1\t2\tx\tx\tID=999999999\tO", 1.0, 2.0, 999999999, Off);
    row("largest", "x\t1\t2\tx\tx\tID=2147483647\tO", 1.0, 2.0, 2147483647, Off);
    row("smallest", "x\t1\t2\tx\tx\tID=-2147483648\tO", 1.0, 2.0, std::numeric_limits<int>::min(),
        Off);
    row("many zeros", "x\t1\t2\tx\tx\tID=000000000000007\tO", 1.0, 2.0, 7, Off);
}

void TelemetryLineTest::valid_lines_are_read()
{
    QFETCH(QString, line);
    double voltage = 99.0;
    double current = 99.0;
    int id = 99;
    KestrometerState state = Unknown;
    QVERIFY(read_telemetry_line(line, voltage, current, id, state));
    QTEST(voltage, "voltage");
    QTEST(current, "current");
    QTEST(id, "id");
    QTEST(state, "state");
}

void TelemetryLineTest::invalid_lines_end_at_the_field_that_fails_data()
{
    QTest::addColumn<QString>("line");
    add_columns<double>({"voltage", "current"});
    QTest::addColumn<int>("id");
    const auto row = [](const char* name, const char* line, double voltage, double current,
                        int id) {
        QTest::newRow(name) << QString::fromUtf8(line) << voltage << current << id;
    };
    const double infinity = std::numeric_limits<double>::infinity();
    row("empty", "", 99.0, 99.0, 99);
    row("6 fields", "x\t1\t2\tx\tID=7\tO", 99.0, 99.0, 99);
    row("8 fields", "x\t1\t2\tx\tx\tID=7\tO\tx", 99.0, 99.0, 99);
    row("8 fields, the last empty", "x\t1\t2\tx\tx\tID=7\tO\t", 99.0, 99.0, 99);
    row("blanks for tabs", "x 1 2 x x ID=7 O", 99.0, 99.0, 99);
    row("empty voltage", "x\t\t2\tx\tx\tID=7\tO", 0.0, 99.0, 99);
    row("letters for the voltage", "x\tabc\t2\tx\tx\tID=7\tO", 0.0, 99.0, 99);
    row("decimal comma in the voltage", "x\t48,02\t2\tx\tx\tID=7\tO", 0.0, 99.0, 99);
    row("two points", "x\t4.8.02\t2\tx\tx\tID=7\tO", 0.0, 99.0, 99);
    row("unit behind the voltage", "x\t48.02V\t2\tx\tx\tID=7\tO", 0.0, 99.0, 99);
    row("voltage beyond double", "x\t1e400\t2\tx\tx\tID=7\tO", infinity, 99.0, 99);
    row("empty current", "x\t1\t\tx\tx\tID=7\tO", 1.0, 0.0, 99);
    row("decimal comma in the current", "x\t1\t3,1\tx\tx\tID=7\tO", 1.0, 0.0, 99);
    row("empty ID", "x\t1\t2\tx\tx\t\tO", 1.0, 2.0, 99);
    row("no number", "x\t1\t2\tx\tx\tID=\tO", 1.0, 2.0, 99);
    row("small mark", "x\t1\t2\tx\tx\tid=7\tO", 1.0, 2.0, 99);
    row("letters behind the number", "x\t1\t2\tx\tx\tID=12abc\tO", 1.0, 2.0, 99);
    row("prefix alone", "x\t1\t2\tx\tx\tID=0x\tO", 1.0, 2.0, 99);
    row("fraction", "x\t1\t2\tx\tx\tID=7.0\tO", 1.0, 2.0, 99);
    row("mark that appears by removing marks", "x\t1\t2\tx\tx\tIDID==7\tO", 1.0, 2.0, 99);
    row("beyond 32 bits", "x\t1\t2\tx\tx\tID=2147483648\tO", 1.0, 2.0,
        std::numeric_limits<int>::min());
    row("far beyond 32 bits", "x\t1\t2\tx\tx\tID=4294967303\tO", 1.0, 2.0, 7);
    row("beyond 64 bits", "x\t1\t2\tx\tx\tID=99999999999999999999\tO", 1.0, 2.0, 99);
    row("no letter", "x\t1\t2\tx\tx\tID=7\t", 1.0, 2.0, 7);
    row("two letters", "x\t1\t2\tx\tx\tID=7\tCC", 1.0, 2.0, 7);
    row("letter and blank", "x\t1\t2\tx\tx\tID=7\tC ", 1.0, 2.0, 7);
    row("two units of UTF-16", "x\t1\t2\tx\tx\tID=7\t\xF0\x9F\x94\x8B", 1.0, 2.0, 7);
}

void TelemetryLineTest::invalid_lines_end_at_the_field_that_fails()
{
    QFETCH(QString, line);
    double voltage = 99.0;
    double current = 99.0;
    int id = 99;
    KestrometerState state = Discharging;
    QVERIFY(!read_telemetry_line(line, voltage, current, id, state));
    QTEST(voltage, "voltage");
    QTEST(current, "current");
    QTEST(id, "id");
    QCOMPARE(state, Discharging);
}

void TelemetryLineTest::numbers_that_are_not_finite_are_numbers()
{
    double voltage = 0.0;
    double current = 0.0;
    int id = 0;
    KestrometerState state = Unknown;
    QVERIFY(read_telemetry_line("x\tinf\tnan\tx\tx\tID=7\tO", voltage, current, id, state));
    QVERIFY(qIsInf(voltage));
    QVERIFY(qIsNaN(current));
    QVERIFY(read_telemetry_line("x\t-inf\t1\tx\tx\tID=7\tO", voltage, current, id, state));
    QCOMPARE(voltage, -std::numeric_limits<double>::infinity());
}

KEST_GUILESS_TEST(TelemetryLineTest)
#include "tst_telemetry_line.moc"
