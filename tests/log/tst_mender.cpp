#include "log/log_line.h"
#include "log/mender.h"
#include "log/old_tail.h"
#include "support/mutated_log.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QtTest>

/** What a mended copy holds, and what is left out of it. */
class MenderTest : public QObject
{
    Q_OBJECT

private slots:
    void a_log_is_mended_data();
    void a_log_is_mended();
    void what_a_shorter_log_was_written_over_is_split_off_data();
    void what_a_shorter_log_was_written_over_is_split_off();
    void what_cannot_be_mended_says_why_data();
    void what_cannot_be_mended_says_why();
    void every_copy_of_a_mutated_log_loads_data();
    void every_copy_of_a_mutated_log_loads();
    void every_good_row_of_a_cut_log_is_kept();
};

namespace
{
class Parts final : public MendedParts
{
public:
    void begin_part() override
    {
        logs << QByteArray();
    }
    void write(const QByteArray& bytes) override
    {
        logs.last() += bytes;
    }

    QList<QByteArray> logs;
};

struct Mended
{
    explicit Mended(const QByteArray& log, const EventLog& events = EventLog()) : mender(parts)
    {
        QList<QByteArray> lines = log.split('\n');
        const bool whole = lines.last().isEmpty();
        if (whole)
            lines.removeLast();
        OldTail tail(events);
        for (const QByteArray& line : qAsConst(lines))
            tail.take_line(line);
        mender.expect_tail(tail.first_line());
        for (int i = 0; i < lines.size(); ++i)
            mender.take_line(lines[i], whole || i + 1 < lines.size());
        mender.finish();
    }

    /** "3-5 reason|8 reason" */
    QString left_out() const
    {
        QStringList texts;
        for (const LeftOut& lines : mender.left_out)
            texts << (lines.first == lines.last
                          ? QString::number(lines.first)
                          : QString("%1-%2").arg(lines.first).arg(lines.last)) +
                         ' ' + lines.reason;
        return texts.join('|');
    }

    Parts parts;
    Mender mender;
};

const QByteArray HEAD = "Kestrometer Log\nBattery Name:  A\nSerial Number: 1\n";
const QByteArray CHARGE_TITLES = "Time (s),Voltage (V)\n";
const QByteArray TITLES = "Time (s),Amp-Hours (Ah),Voltage (V),Current (A),IR (mOhms)\n";

QByteArray section(const char* kind, int number)
{
    return QByteArray(kind).leftJustified(29) + QByteArray::number(number) +
           "\nTimestamp:                   2020-04-03 10:00:00\n";
}

QByteArray charge(int number)
{
    return section("Charge Number:", number) + CHARGE_TITLES + "0.9,41.52\n1.9,41.53\n";
}

QByteArray discharge(int number, const QByteArray& rows = QByteArray())
{
    return section("Discharge Number:", number) + TITLES +
           (rows.isEmpty() ? "1.0,0.003,40.00,10.00\n2.0,0.006,39.99,10.00\n" : rows);
}

void add(const char* name, const QByteArray& log, const QList<QByteArray>& parts,
         const char* left_out)
{
    QTest::newRow(name) << log << parts << QString(left_out);
}
}  // namespace

void MenderTest::a_log_is_mended_data()
{
    QTest::addColumn<QByteArray>("log");
    QTest::addColumn<QList<QByteArray>>("parts");
    QTest::addColumn<QString>("left_out");
    const QByteArray whole = HEAD + charge(1) + discharge(1) + charge(2);
    const QByteArray rows = "1.0,0.003,40.00,10.00\n2.0,0.006,39.99,10.00\n";
    add("nothing to do", whole, {whole}, "");
    add("a byte order mark", "\xef\xbb\xbf" + whole, {whole}, "");
    add("a last line without its end", whole + "2.9,41.5", {whole},
        "19 the last line, which has no end");
    add("a row that loads and is wrong", HEAD + discharge(1, rows + "3.0,0.009,40.11,9\n"),
        {HEAD + discharge(1, rows)}, "9 no line in the application's own form");
    add("zeros in the middle", HEAD + discharge(1, rows + QByteArray(4, '\0') + "\n" + rows),
        {HEAD + discharge(1, rows + rows)}, "9 no line in the application's own form");
    add("zeros behind a row",
        HEAD + discharge(1, rows + "3.0,0.009,40.00,10.00" + QByteArray(4, '\0') + "\n" + rows),
        {HEAD + discharge(1, rows + rows)}, "9 no line in the application's own form");
    add("zeros in a number's name",
        HEAD + charge(1) + QByteArray(charge(2)).replace("Number:", QByteArray("Number\0x:", 9)) +
            discharge(1),
        {HEAD + charge(1) + discharge(1)},
        "9 no line in the application's own form|10-13 its section has lost its head");
    add("a parameter cut", HEAD + section("Charge Number:", 1) + "Max Charge Ti\n" + CHARGE_TITLES,
        {HEAD + section("Charge Number:", 1) + CHARGE_TITLES},
        "6 no line in the application's own form");
    add("a head without its number",
        HEAD + charge(1) + "Disch\n" + discharge(1).mid(discharge(1).indexOf('\n') + 1) +
            charge(2) + discharge(2),
        {HEAD + charge(1) + charge(1) + discharge(1)},
        "9 no line in the application's own form|10-13 its section has lost its head");
    add("charge rows under a discharge",
        HEAD + charge(1) + section("Discharge Number:", 1) + TITLES + "0.9,41.60\n" + discharge(2),
        {HEAD + charge(1) + section("Discharge Number:", 1) + TITLES +
         section("Charge Number:", 2) + CHARGE_TITLES + "0.9,41.60\n" + discharge(2)},
        "");
    add("an old tail behind a cut line",
        HEAD + charge(1) + "7,41.40\n" + charge(3) + discharge(3) + charge(4),
        {HEAD + charge(1), HEAD + charge(1) + discharge(1) + charge(2)},
        "9 no line in the application's own form");
    add("an old tail in the middle of rows",
        HEAD + discharge(1, rows + "3.0,2.500,38.00,10.00\n4.0,2.503,38.00,10.00\n") + charge(2),
        {HEAD + discharge(1, rows), HEAD + charge(1)},
        "9-10 left of another log that was written over");
    add("one odd row is no tail",
        HEAD + discharge(1, "1.0,0.003,40.00,10.00\n2.0,7.006,39.99,10.00\n"
                            "3.0,0.009,39.99,10.00\n4.0,0.012,39.99,10.00\n"),
        {HEAD + discharge(1, "1.0,0.003,40.00,10.00\n2.0,7.006,39.99,10.00\n"
                             "3.0,0.009,39.99,10.00\n4.0,0.012,39.99,10.00\n")},
        "");
    add("another log behind it", whole + HEAD + charge(1), {whole, HEAD + charge(1)}, "");
}

void MenderTest::a_log_is_mended()
{
    QFETCH(QByteArray, log);
    QFETCH(QList<QByteArray>, parts);
    const Mended mended(log);
    QCOMPARE(mended.mender.failure, QString());
    QCOMPARE(mended.parts.logs.size(), parts.size());
    for (int i = 0; i < parts.size(); ++i) {
        QCOMPARE(mended.parts.logs[i], parts[i]);
        QVERIFY(loads(parts[i]));
    }
    QTEST(mended.left_out(), "left_out");
    QCOMPARE(mended.mender.untouched(), parts.size() == 1 && parts[0] == log);
}

void MenderTest::what_a_shorter_log_was_written_over_is_split_off_data()
{
    QTest::addColumn<QByteArray>("log");
    QTest::addColumn<bool>("events_tell");
    QTest::addColumn<QList<QByteArray>>("parts");
    QTest::addColumn<QString>("left_out");
    const auto on = [](const char* time, QByteArray section) {
        return section.replace("2020-04-03 10:00:00", time);
    };
    const char* const OLD = "2020-04-01 10:00:00";
    const char* const HOUR = "2020-04-03 09:00:00";
    const char* const TAIL = " left of another log that was written over";
    const QByteArray young = HEAD + charge(1);
    const QByteArray old_rows = "1.9,41.52\n2.9,41.53\n";
    const auto row = [](const char* name, const QByteArray& log, bool events_tell,
                        const QList<QByteArray>& parts, const QString& left_out) {
        QTest::newRow(name) << log << events_tell << parts << left_out;
    };
    row("rows that would go on, behind a cut line",
        young + "7\n" + old_rows + on(OLD, discharge(1)), false,
        {young, HEAD + on(OLD, discharge(1))},
        QString("9 no line in the application's own form|10-11%1").arg(TAIL));
    row("rows behind a cut line that is whole by chance",
        young + "0.3,41.40\n" + old_rows + on(OLD, discharge(1)), false,
        {young, HEAD + on(OLD, discharge(1))}, QString("9-11%1").arg(TAIL));
    row("cut just before a head", young + on(OLD, discharge(1)), false,
        {young, HEAD + on(OLD, discharge(1))}, "");
    row("more sections behind it", young + on(OLD, discharge(1) + charge(2)), false,
        {young, HEAD + on(OLD, discharge(1) + charge(2))}, "");
    row("an hour earlier, as the event log tells too", young + on(HOUR, discharge(1)), true,
        {young, HEAD + on(HOUR, discharge(1))}, "");
    row("an hour earlier, behind a cut line", young + "7\n" + old_rows + on(HOUR, discharge(1)),
        false, {young, HEAD + on(HOUR, discharge(1))},
        QString("9 no line in the application's own form|10-11%1").arg(TAIL));
    row("an hour earlier, and nothing is cut", young + on(HOUR, discharge(1)), false,
        {young + on(HOUR, discharge(1))}, "");
    row("a later head", young + "7\n" + old_rows + on("2020-04-03 11:00:00", discharge(1)), false,
        {young + old_rows + on("2020-04-03 11:00:00", discharge(1))},
        "9 no line in the application's own form");
}

void MenderTest::what_a_shorter_log_was_written_over_is_split_off()
{
    QFETCH(QByteArray, log);
    QFETCH(bool, events_tell);
    QFETCH(QList<QByteArray>, parts);
    EventLog events;
    if (events_tell)
        for (const int hour : {9, 10})
            events.changes.append({QDateTime(QDate(2020, 4, 3), QTime(hour, 0)), "Charging", "x"});
    const Mended mended(log, events);
    QCOMPARE(mended.mender.failure, QString());
    QCOMPARE(mended.parts.logs, parts);
    QTEST(mended.left_out(), "left_out");
}

void MenderTest::what_cannot_be_mended_says_why_data()
{
    QTest::addColumn<QByteArray>("log");
    QTest::addColumn<QString>("failure");
    QTest::newRow("nothing") << QByteArray() << "it has no whole line";
    QTest::newRow("a mark cut") << QByteArray("Kestrometer L") << "it has no whole line";
    QTest::newRow("no log") << QByteArray("Hello\n")
                            << "its first line is not the mark of a data log";
    QTest::newRow("an older head cut")
        << QByteArray("Test Parameters:\n") << "the head of the log is cut off";
    const QByteArray older = content_of(test_data("logs/older_two_cycles.csv"));
    QTest::newRow("an older head damaged")
        << QByteArray(older).replace("LV Cutoff", "LV") << "the head of the log is damaged";
}

void MenderTest::what_cannot_be_mended_says_why()
{
    QFETCH(QByteArray, log);
    QTEST(Mended(log).mender.failure, "failure");
}

void MenderTest::every_copy_of_a_mutated_log_loads_data()
{
    QTest::addColumn<QByteArray>("log");
    const QByteArray older = content_of(test_data("logs/older_two_cycles.csv"));
    QTest::newRow("current") << HEAD + charge(1) + discharge(1) + charge(2) + discharge(2);
    QTest::newRow("older") << older;
    QTest::newRow("mixed") << older + charge(3) + discharge(3);
}

void MenderTest::every_copy_of_a_mutated_log_loads()
{
    QFETCH(QByteArray, log);
    std::mt19937 random(7);
    int copies = 0;
    for (int i = 0; i < 2000; ++i) {
        const QByteArray damaged = mutated_log(log, random);
        const Mended mended(damaged);
        if (!mended.mender.failure.isEmpty())
            continue;
        for (const QByteArray& part : mended.parts.logs)
            QVERIFY2(loads(part), (damaged + "\n=>\n" + part).constData());
        ++copies;
    }
    QVERIFY(copies > 500);
}

/** Cut anywhere, a log gives all its whole lines. */
void MenderTest::every_good_row_of_a_cut_log_is_kept()
{
    const QByteArray whole = HEAD + charge(1) + discharge(1) + charge(2) + discharge(2);
    for (int length = HEAD.size(); length < whole.size(); ++length) {
        const QByteArray cut = whole.left(length);
        const Mended mended(cut);
        QCOMPARE(mended.parts.logs.size(), 1);
        QCOMPARE(mended.parts.logs[0], cut.left(cut.lastIndexOf('\n') + 1));
    }
}

KEST_GUILESS_TEST(MenderTest)
#include "tst_mender.moc"
