#include "records/event_line.h"
#include "records/line_cutter.h"
#include "support/phase_tour.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include "config/settings.h"
#include "station/test_station.h"

#include <QDir>
#include <QtTest>

Q_DECLARE_METATYPE(EventKind)
Q_DECLARE_METATYPE(TestPhase)

/** The words of the event log are those of the engine. */
class WatchEventTextsTest : public QObject
{
    Q_OBJECT

private slots:
    void each_phase_of_the_engine_is_known_by_its_words_data();
    void each_phase_of_the_engine_is_known_by_its_words();
    void all_that_whole_tests_have_written_is_understood_data();
    void all_that_whole_tests_have_written_is_understood();
    void a_line_is_what_its_words_say_data();
    void a_line_is_what_its_words_say();
    void a_change_tells_phase_reason_and_time();
    void lines_are_the_same_however_the_pieces_are_cut_data();
    void lines_are_the_same_however_the_pieces_are_cut();
    void a_line_without_an_end_does_not_fill_the_memory();
};

namespace
{
/** What a test in the engine's phase writes, and needs. */
struct EnginePhase
{
    Phase phase;
    TestPhase read;
};

constexpr EnginePhase ENGINE_PHASES[] = {
    {PHASE_CHARGING, TestPhase::Charging},
    {PHASE_CHARGING_LEVELED, TestPhase::Charging},
    {PHASE_FULL_CHARGE_TEST, TestPhase::FullChargeTest},
    {PHASE_READY_FOR_DISCHARGE, TestPhase::ReadyForDischarge},
    {PHASE_DISCHARGING, TestPhase::Discharging},
    {PHASE_IR_TEST, TestPhase::ResistanceTest},
    {PHASE_IR_RECOVERY, TestPhase::ResistanceRecovery},
    {PHASE_FINAL_CHARGE, TestPhase::FinalCharge},
    {PHASE_FINAL_CHARGE_TEST, TestPhase::FinalChargeTest},
    {PHASE_DONE, TestPhase::Done},
};

EventLine last_change(const QByteArray& log)
{
    EventLine change;
    for (const QByteArray& line : log.split('\n')) {
        const EventLine event = read_event_line(QString::fromUtf8(line));
        if (event.kind == EventKind::PhaseChange)
            change = event;
    }
    return change;
}

const QString STAMP = "2020-04-03 09:15:02 ";

QByteArrayList cut(const QByteArray& text, int size)
{
    LineCutter cutter;
    QByteArrayList lines;
    for (int at = 0; at < text.size(); at += size)
        cutter.feed(text.mid(at, size), [&lines](const QByteArray& line) { lines << line; });
    return lines;
}
}  // namespace

void WatchEventTextsTest::each_phase_of_the_engine_is_known_by_its_words_data()
{
    QTest::addColumn<int>("phase");
    QTest::addColumn<TestPhase>("read");
    for (const EnginePhase& row : ENGINE_PHASES)
        QTest::addRow("phase %d", int(row.phase)) << int(row.phase) << row.read;
    QCOMPARE(int(std::size(ENGINE_PHASES)), int(PHASE_DONE));
}

void WatchEventTextsTest::each_phase_of_the_engine_is_known_by_its_words()
{
    QFETCH(int, phase);
    QFETCH(TestPhase, read);
    PhaseTour tour;
    QVERIFY(tour.reach(Phase(phase)));
    const EventLine change = last_change(tour.test.bench.txt());
    QCOMPARE(phase_of(change.phase), read);
    QCOMPARE(change.phase, tour.test.station.phase_to_string(Phase(phase)));
    QCOMPARE(traits_of(read).needs_rows, traits_of(Phase(phase)).sample != Sample::None);
    const bool is_step =
        phase == PHASE_FULL_CHARGE_TEST || phase == PHASE_IR_TEST || phase == PHASE_IR_RECOVERY;
    QCOMPARE(traits_of(read).is_step, is_step);
}

void WatchEventTextsTest::all_that_whole_tests_have_written_is_understood_data()
{
    QTest::addColumn<QString>("file");
    const QDir folder(test_data("whole"));
    for (const QString& name : folder.entryList({"*.txt"}))
        QTest::newRow(qPrintable(name)) << folder.filePath(name);
}

void WatchEventTextsTest::all_that_whole_tests_have_written_is_understood()
{
    QFETCH(QString, file);
    const QByteArray log = content_of(file);
    const QByteArrayList lines = cut(log, 1000);
    QCOMPARE(lines.size(), log.count('\n'));
    for (const QByteArray& line : lines) {
        const EventLine event = read_event_line(QString::fromUtf8(line));
        const bool garbage = line.startsWith("2020-04-03 09:15:04 8\x1aP");
        QVERIFY2(event.kind != EventKind::Other || garbage, line);
        if (event.kind == EventKind::PhaseChange) {
            QVERIFY2(phase_of(event.phase) != TestPhase::Unknown, line);
            QCOMPARE(line.count("Switching"), 1);
        }
        QCOMPARE(event.kind == EventKind::PhaseChange, line.contains("Switching to phase"));
        QCOMPARE(event.kind == EventKind::BotchedTest, line.contains("botched"));
        QCOMPARE(event.kind == EventKind::Reset, line.contains("Attempting"));
    }
}

void WatchEventTextsTest::a_line_is_what_its_words_say_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<EventKind>("kind");
    const auto row = [](const char* name, const QString& line, EventKind kind) {
        QTest::newRow(name) << line << kind;
    };
    const QString change = "Switching to phase Done because max charge time reached";
    row("a change", STAMP + change, EventKind::PhaseChange);
    row("a change without its reason", STAMP + "Switching to phase Done", EventKind::Other);
    row("a change without a time", change, EventKind::Other);
    row("a change behind a cut line", "2020-04-03 09:1" + STAMP + change, EventKind::PhaseChange);
    row("a change within telemetry", STAMP + change + "\t1", EventKind::Telemetry);
    row("telemetry", STAMP + "KEST\t24.10\t4.8", EventKind::Telemetry);
    row("telemetry behind a line feed", "4.10\t4.8\t25", EventKind::Telemetry);
    row("telemetry that says reset", STAMP + "Attempting to reset the Kestrometer\t",
        EventKind::Telemetry);
    row("a command", STAMP + "43", EventKind::Command);
    row("a longer command", STAMP + "55 0F A4", EventKind::Command);
    row("no command", STAMP + "55 0f", EventKind::Other);
    row("no command either", STAMP + "55 0", EventKind::Other);
    row("a time alone", "2020-04-03 09:15:02", EventKind::Other);
    row("a time and a blank", STAMP, EventKind::Other);
    row("nothing", "", EventKind::Other);
    row("a time in letters", "2020-04-0x 09:15:02 43", EventKind::Other);
    row("a time with a minus", "2020-04--3 09:15:02 43", EventKind::Other);
    row("a time with a T", "2020-04-03T09:15:02 43", EventKind::Other);
    row("no such hour", "2020-04-03 24:15:02 43", EventKind::Other);
    row("no such day", "2020-02-30 09:15:02 43", EventKind::Other);
}

void WatchEventTextsTest::a_line_is_what_its_words_say()
{
    QFETCH(QString, line);
    QTEST(read_event_line(line).kind, "kind");
}

void WatchEventTextsTest::a_change_tells_phase_reason_and_time()
{
    const EventLine event =
        read_event_line(STAMP + "Switching to phase Ready for 2nd Discharge because <b> because");
    QCOMPARE(event.time, QDateTime(QDate(2020, 4, 3), QTime(9, 15, 2)));
    QCOMPARE(event.phase, QString("Ready for 2nd Discharge"));
    QCOMPARE(event.reason, QString("<b> because"));
}

void WatchEventTextsTest::lines_are_the_same_however_the_pieces_are_cut_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {1, 2, 3, 7, 100})
        QTest::addRow("%d", size) << size;
}

void WatchEventTextsTest::lines_are_the_same_however_the_pieces_are_cut()
{
    QFETCH(int, size);
    QCOMPARE(cut("one\n\nthree\nwithout an end", size), QByteArrayList({"one", "", "three"}));
}

void WatchEventTextsTest::a_line_without_an_end_does_not_fill_the_memory()
{
    const QByteArray longest(LineCutter::LONGEST_LINE, 'x');
    QCOMPARE(cut(longest + "yyy\nnext\n", 1000), QByteArrayList({longest, "next"}));
}

KEST_TEST(WatchEventTextsTest)
#include "tst_watch_event_texts.moc"
