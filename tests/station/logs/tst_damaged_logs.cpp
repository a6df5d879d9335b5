#include "support/log_loading.h"
#include "support/literal_log_reader.h"
#include "support/mutated_log.h"
#include "support/read_log.h"
#include "support/test_program.h"

#include <QElapsedTimer>
#include <QtTest>

#include <random>

/** Logs cut short, changed at random, and files that never were logs: read or refused, never more. */
class DamagedLogsTest : public QObject
{
    Q_OBJECT

private slots:
    void a_current_log_cut_anywhere_loads_its_whole_rows_or_nothing_data();
    void a_current_log_cut_anywhere_loads_its_whole_rows_or_nothing();
    void an_older_log_cut_anywhere_loads_its_whole_rows_or_nothing();
    void a_changed_log_is_read_as_the_rules_say_data();
    void a_changed_log_is_read_as_the_rules_say();
    void a_file_that_is_no_log_is_refused_data();
    void a_file_that_is_no_log_is_refused();
    void a_log_may_have_any_number_of_sections();
};

namespace
{
const char* const SAMPLES[] = {"current_one_cycle.csv", "current_two_cycles.csv",
                               "older_two_cycles.csv"};

/** Rows of discharges among whole lines: what stands in a section with more than two columns. */
int whole_rows(const QByteArray& lines, char separator, const QByteArray& discharge)
{
    int rows = 0;
    bool discharging = false;
    for (const QByteArray& line : lines.split('\n')) {
        if (line.count(separator) < 3 || line.startsWith("Time (s)")) {
            const bool marker = line.startsWith("Charge") || line.startsWith("Final Charge") ||
                                line.startsWith("Test") || line.startsWith(discharge);
            if (marker && !line.startsWith("Final Charge ("))
                discharging = line.startsWith(discharge);
        } else if (discharging) {
            ++rows;
        }
    }
    return rows;
}

bool is_number(const QByteArray& text)
{
    bool ok = false;
    text.toDouble(&ok);
    return ok;
}

/** Whether a row that may be cut short still has four or five numbers. */
bool still_a_row(const QByteArray& line, char separator)
{
    const QList<QByteArray> fields = line.split(separator);
    return (fields.size() == 4 || fields.size() == 5) &&
           std::all_of(fields.begin(), fields.end(), is_number);
}
}  // namespace

void DamagedLogsTest::a_current_log_cut_anywhere_loads_its_whole_rows_or_nothing_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("one cycle") << sample_log("current_one_cycle.csv");
    QTest::newRow("two cycles") << sample_log("current_two_cycles.csv");
}

void DamagedLogsTest::a_current_log_cut_anywhere_loads_its_whole_rows_or_nothing()
{
    QFETCH(QByteArray, bytes);
    int loaded = 0;
    for (int length = 0; length <= bytes.size(); ++length) {
        const QByteArray prefix = bytes.left(length);
        const QByteArray whole = prefix.left(prefix.lastIndexOf('\n') + 1);
        const QByteArray rest = prefix.mid(whole.size());
        const ReadLog log(prefix);
        ReadLog literal{QByteArray()};
        read_literally(prefix, literal);
        QVERIFY2(log.same_as(literal), prefix.constData());
        if (!log.accepted)
            continue;
        ++loaded;
        // A row that has lost digits of its last number counts as one.
        const int cut_row = still_a_row(rest, ',') ? 1 : 0;
        QCOMPARE(log.row_count(), whole_rows(whole, ',', "Discharge") + cut_row);
    }
    // At each line end, and where a last line without its end still makes sense.
    QVERIFY(loaded > bytes.count('\n'));
    QVERIFY(loaded < bytes.size() / 2);
}

void DamagedLogsTest::an_older_log_cut_anywhere_loads_its_whole_rows_or_nothing()
{
    const QByteArray bytes = sample_log("older_two_cycles.csv");
    int loaded = 0;
    for (int length = 0; length <= bytes.size(); ++length) {
        const QByteArray prefix = bytes.left(length);
        const QByteArray whole = prefix.left(prefix.lastIndexOf('\n') + 1);
        const QByteArray rest = prefix.mid(whole.size());
        const ReadLog log(prefix);
        ReadLog literal{QByteArray()};
        read_literally(prefix, literal);
        QVERIFY2(log.same_as(literal), prefix.constData());
        if (!log.accepted)
            continue;
        ++loaded;
        const bool discharging =
            whole.lastIndexOf("\nDischarge cycle") >
            qMax(whole.lastIndexOf("\nCharge cycle"), whole.lastIndexOf("\nFinal Charge\n"));
        const int cut_row = discharging && still_a_row(rest, '\t') ? 1 : 0;
        QCOMPARE(log.row_count(), whole_rows(whole, '\t', "Discharge cycle") + cut_row);
    }
    QVERIFY(loaded > 0);
}

void DamagedLogsTest::a_changed_log_is_read_as_the_rules_say_data()
{
    QTest::addColumn<QByteArray>("bytes");
    for (const char* name : SAMPLES)
        QTest::newRow(name) << sample_log(name);
}

void DamagedLogsTest::a_changed_log_is_read_as_the_rules_say()
{
    QFETCH(QByteArray, bytes);
    std::mt19937 random(4);
    int accepted = 0;
    for (int i = 0; i < 3000; ++i) {
        const QByteArray damaged = mutated_log(bytes, random);
        const ReadLog log(damaged);
        ReadLog literal{QByteArray()};
        read_literally(damaged, literal);
        QVERIFY2(log.same_as(literal), damaged.constData());
        accepted += log.accepted ? 1 : 0;
    }
    QVERIFY(accepted > 100);
    QVERIFY(accepted < 2900);
}

void DamagedLogsTest::a_file_that_is_no_log_is_refused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const int megabytes = 4 * 1024 * 1024;
    const QByteArray current = "Kestrometer Log\n";
    const QByteArray discharge = current + "Discharge Number: 1\n";
    QByteArray noise;
    std::mt19937 random(5);
    for (int i = 0; i < 200000; ++i)
        noise += char(random());
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("megabytes without a line end") << QByteArray(megabytes, 'a');
    QTest::newRow("megabytes of line ends") << QByteArray(megabytes, '\n');
    QTest::newRow("megabytes of zeros") << QByteArray(megabytes, '\0');
    QTest::newRow("noise") << noise;
    QTest::newRow("noise behind the mark") << current + noise;
    QTest::newRow("noise behind the older mark") << "Test Parameters:\n" + noise;
    QTest::newRow("megabytes behind the mark") << current + QByteArray(megabytes, 'a');
    QTest::newRow("megabytes of commas") << discharge + QByteArray(megabytes, ',');
    QTest::newRow("megabytes of commas in a charge")
        << current + "Charge Number: 1\n" + QByteArray(megabytes, ',');
    QTest::newRow("megabytes of colons") << current + QByteArray(megabytes, ':');
    QTest::newRow("megabytes of tabs") << "Test Parameters:\n" + QByteArray(megabytes, '\t');
    QTest::newRow("megabytes of underscores")
        << sample_log("older_two_cycles.csv").replace("_15_2\n", QByteArray(megabytes, '_') + "\n");
    QTest::newRow("megabytes of colons and blanks")
        << sample_log("older_two_cycles.csv") + QByteArray(": ").repeated(megabytes / 2);
    QTest::newRow("a cycle number of megabytes")
        << current + "Charge Number: " + QByteArray(megabytes, '1') + "\n";
    QTest::newRow("a timestamp of megabytes")
        << discharge + "Timestamp: " + QByteArray(megabytes, '2') + "\n";
    QTest::newRow("a number of megabytes and a letter")
        << discharge + "1,2,3," + QByteArray(megabytes, '9') + "x\n";
    QTest::newRow("halves of wide characters") << current + QByteArray(100001, '\xc3');
    QTest::newRow("another byte order") << QByteArray("\xff\xfe", 2) + current;
}

void DamagedLogsTest::a_file_that_is_no_log_is_refused()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(!ReadLog(bytes).accepted);
}

void DamagedLogsTest::a_log_may_have_any_number_of_sections()
{
    QByteArray bytes = "Kestrometer Log\n";
    for (int number = 1; number <= 5000; ++number)
        bytes += "Discharge Number: " + QByteArray::number(number) + "\n1,2,3,4\n";
    const ReadLog log(bytes);
    QVERIFY(log.accepted);
    QCOMPARE(int(log.cycles.size()), 5000);
    QCOMPARE(log.row_count(), 5000);
}

KEST_GUILESS_TEST(DamagedLogsTest)
#include "tst_damaged_logs.moc"
