#include "station/logs/log_text.h"
#include "support/read_log.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QtTest>

/** Where a reader stopped, and the words for why. */
class LogRefusalsTest : public QObject
{
    Q_OBJECT

private slots:
    void a_current_log_is_refused_at_a_place_data();
    void a_current_log_is_refused_at_a_place();
    void an_older_log_is_refused_at_a_place_data();
    void an_older_log_is_refused_at_a_place();
    void a_file_without_a_mark_is_refused_at_its_first_line_data();
    void a_file_without_a_mark_is_refused_at_its_first_line();
    void an_accepted_log_tells_of_no_refusal();
    void a_text_is_quoted_on_one_line_data();
    void a_text_is_quoted_on_one_line();
};

namespace
{
const QByteArray MARK = "Kestrometer Log\n";
const QByteArray CHARGE = MARK + "Charge Number: 1\n";
const QByteArray DISCHARGE = MARK + "Discharge Number: 1\n";

/** "3:7 'x' is no number" */
QString refusal_of(const QByteArray& bytes)
{
    const ReadLog log(bytes);
    if (log.accepted)
        return "accepted";
    return QString("%1:%2 ").arg(log.refusal.line).arg(log.refusal.column) + log.refusal.reason;
}

void add_refusal(const char* name, const QByteArray& bytes, const char* refusal)
{
    QTest::newRow(name) << bytes << QString(refusal);
}

/** The older sample with its line `number`, counted from 1, replaced. */
QByteArray older_with(int number, const QByteArray& line)
{
    QList<QByteArray> lines = content_of(test_data("logs/older_two_cycles.csv")).split('\n');
    lines[number - 1] = line;
    return lines.join('\n');
}

QByteArray older_and(const QByteArray& line)
{
    return content_of(test_data("logs/older_two_cycles.csv")) + line + "\n";
}
}  // namespace

void LogRefusalsTest::a_current_log_is_refused_at_a_place_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("refusal");
    add_refusal("a name", MARK + "Battery Name: A\n Colour : red\n",
                "3:1 nothing is known by the name 'Colour'");
    add_refusal("a number of a charge", MARK + "Charge Number:   3\n",
                "2:18 charge number '3' where 1 is due");
    add_refusal("a number of a discharge", DISCHARGE + "Discharge Number: %1\n",
                "3:19 discharge number '%1' where 2 is due");
    add_refusal("a timestamp outside", MARK + "Timestamp: 2020-04-03 09:15:02\n",
                "2:1 a timestamp before the first section");
    add_refusal("a timestamp", DISCHARGE + "Timestamp:\t2020-13-03 09:15:02\n",
                "3:12 '2020-13-03 09:15:02' is no date and time");
    add_refusal("a parameter", MARK + "Max Charge Time (h): 8 h\n", "2:22 '8 h' is no number");
    add_refusal("no value at all", MARK + "Final Charge (V):\n", "2:18 '' is no number");
    add_refusal("a flag", MARK + "Detect Full Charge: yes\n",
                "2:21 'yes' is neither 'Yes' nor 'No'");
    add_refusal("a row outside", MARK + "1.0,2.00\n", "2:1 a row before the first section");
    add_refusal("an empty line outside", MARK + "\n\n", "2:1 an empty line");
    add_refusal("a row of a charge", CHARGE + "0.9\n", "3:1 1 column instead of 2 in a charge");
    add_refusal("an empty line in a charge", CHARGE + "\n", "3:1 an empty line");
    add_refusal("a row cut short", DISCHARGE + "1.0,0.003,40.97\n",
                "3:1 3 columns instead of 4 or 5 in a discharge");
    add_refusal("an empty line in a discharge", DISCHARGE + "1.0,0.003,40.97,9.98\n\n",
                "4:1 an empty line");
    add_refusal("a first column", DISCHARGE + "x,0.003,40.97,9.98\n", "3:1 'x' is no number");
    add_refusal("a third column", DISCHARGE + "1.0,0.003,4 0,9.98\n", "3:11 '4 0' is no number");
    add_refusal("a fifth column", DISCHARGE + "1.0,0.003,40.97,9.98,\n", "3:22 '' is no number");
}

void LogRefusalsTest::a_current_log_is_refused_at_a_place()
{
    QFETCH(QByteArray, bytes);
    QTEST(refusal_of(bytes), "refusal");
}

void LogRefusalsTest::an_older_log_is_refused_at_a_place_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("refusal");
    add_refusal("the mark alone", "Test Parameters:\n", "2:1 the head of the log ends here");
    add_refusal("too few parameters", older_with(2, "Charge Time (s):\t1"),
                "2:1 2 fields instead of 10");
    add_refusal("a label",
                older_with(2, "Charge Time (s):\t1\tLV cutoff\t1\t# Cycles:\t1\t"
                              "Final Voltage:\t1\tAutocycle\tTrue"),
                "2:20 'LV cutoff' instead of 'LV Cutoff'");
    add_refusal("a number",
                older_with(2, "Charge Time (s):\t1\tLV Cutoff\tx\t# Cycles:\t1\t"
                              "Final Voltage:\t1\tAutocycle\tTrue"),
                "2:30 'x' is no number");
    add_refusal("a whole number",
                older_with(2, "Charge Time (s):\t1\tLV Cutoff\t1\t# Cycles:\t1.5\t"
                              "Final Voltage:\t1\tAutocycle\tTrue"),
                "2:42 '1.5' is no whole number");
    add_refusal("an autocycle",
                older_with(2, "Charge Time (s):\t1\tLV Cutoff\t1\t# Cycles:\t1\t"
                              "Final Voltage:\t1\tAutocycle\tYes"),
                "2:71 'Yes' is neither 'True' nor 'False'");
    add_refusal("a fixed line", older_with(3, "Battery"),
                "3:1 'Battery' instead of 'Battery Details:'");
    add_refusal("a nominal value",
                older_with(4, "Battery Name:\tA\tSerial #:\t1\tNominal V:\t\tNominal Ah:\t1"),
                "4:40 '' is no number");
    add_refusal("a part of the date", older_with(6, "4_-3_2018_9_15_2"),
                "6:3 '-3' is no part of a date");
    add_refusal("a part too many", older_with(6, "4_3_2018_9_15_2_1"), "6:1 7 fields instead of 6");
    add_refusal("too many titles", older_with(7, "\t\t\t\t\t"), "7:1 6 fields instead of 4 or 5");
    add_refusal("a title", older_with(7, "Time (s)\tAh\tVoltage (V)\tCurrent (A)"),
                "7:10 'Ah' instead of 'Amp-Hours (Ah)'");
    add_refusal("the fifth title",
                older_with(7, "Time (s)\tAmp-Hours (Ah)\tVoltage (V)\tCurrent (A)\tR"),
                "7:49 'R' instead of 'Internal Resistance'");
    add_refusal("a marker", older_with(8, "Test complete"),
                "8:1 nothing is known by the name 'Test complete'");
    add_refusal("a line of the current generation", older_with(8, "Charge Number:               1"),
                "8:1 nothing is known by the name 'Charge Number:'");
    add_refusal("an empty line", older_with(8, ""), "8:1 an empty line");
    add_refusal("three columns", older_with(8, "1\t2\t3"), "8:1 3 columns instead of 4 or 5");
    add_refusal("a column of a row", older_with(8, "1\t2\t3\tx"), "8:7 'x' is no number");
    add_refusal("a resistance of a discharge", older_with(9, "Discharge cycle: 1\n1\t2\t3\t4\tx"),
                "10:9 'x' is no number");
    add_refusal("behind the end", older_and("x").replace("Test Complete\n", ""),
                "24:1 nothing is known by the name 'x'");
}

void LogRefusalsTest::an_older_log_is_refused_at_a_place()
{
    QFETCH(QByteArray, bytes);
    QTEST(refusal_of(bytes), "refusal");
}

void LogRefusalsTest::a_file_without_a_mark_is_refused_at_its_first_line_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("refusal");
    add_refusal("nothing", "", "1:1 an empty line in place of the mark of a data log");
    add_refusal("a text", "Hello\n", "1:1 'Hello' is not the mark of a data log");
    add_refusal("a blank behind", "Kestrometer Log \n",
                "1:1 'Kestrometer Log ' is not the mark of a data log");
}

void LogRefusalsTest::a_file_without_a_mark_is_refused_at_its_first_line()
{
    QFETCH(QByteArray, bytes);
    QTEST(refusal_of(bytes), "refusal");
}

void LogRefusalsTest::an_accepted_log_tells_of_no_refusal()
{
    const ReadLog log(content_of(test_data("logs/current_two_cycles.csv")));
    QVERIFY(log.accepted);
    QCOMPARE(log.refusal.line, qint64(0));
}

void LogRefusalsTest::a_text_is_quoted_on_one_line_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    QTest::newRow("a word") << QString("word") << QString("'word'");
    QTest::newRow("nothing") << QString() << QString("''");
    QTest::newRow("control characters")
        << QString("a\tb") + QChar(0) << QString("'a%1b%1'").arg(QChar(0xfffd));
    QTest::newRow("forty") << QString(40, 'x') << "'" + QString(40, 'x') + "'";
    QTest::newRow("forty-one") << QString(41, 'x') << "'" + QString(39, 'x') + QChar(0x2026) + "'";
}

void LogRefusalsTest::a_text_is_quoted_on_one_line()
{
    QFETCH(QString, text);
    QTEST(quoted(text), "shown");
}

KEST_GUILESS_TEST(LogRefusalsTest)
#include "tst_log_refusals.moc"
