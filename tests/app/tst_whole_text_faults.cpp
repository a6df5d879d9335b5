#include "support/phase_tour.h"
#include "support/test_program.h"

#include "device/kestrometer.h"
#include "station/test_station.h"

#include <QLabel>
#include <QtTest>

/** Garbled text on the line: it strikes in every phase, and the test goes on to Done. */
class WholeTextFaultsTest : public QObject
{
    Q_OBJECT

private slots:
    void garbled_lines_cost_what_they_cost_data();
    void garbled_lines_cost_what_they_cost();
    void absurd_numbers_are_taken_as_they_are_data();
    void absurd_numbers_are_taken_as_they_are();
    void a_number_beyond_all_bounds_fills_rows_but_ends_nothing();
    void megabytes_without_a_line_end_belong_to_a_field_that_nobody_reads();
    void every_phase_is_struck();
};

namespace
{
constexpr double LOAD_AMPS = 5.0;

/** What a fault in each phase amounts to. */
struct Cost
{
    QString golden;
    int seconds;  ///< of the discharge that count in the total
};

const Cost TAKEN = {"all_lines_taken", 15};         // as without a fault
const Cost UNREAD = {"lines_unread", 13};           // a line counts for the time alone
const Cost LOST = {"lines_lost", 17};               // as if no line had come
const Cost SWALLOWED = {"lines_swallowed", 11};     // two lines count as one that is unread
const Cost LATE = {"lines_late", 18};               // two lines come together with the third
const Cost NO_STATE = {"state_letter_unread", 17};  // the line is taken, its state is none
}  // namespace

void WholeTextFaultsTest::garbled_lines_cost_what_they_cost_data()
{
    add_columns<QString>({"fault", "golden"});
    QTest::addColumn<int>("seconds");
    const auto row = [](const char* fault, const Cost& cost) {
        add_row(fault[0] != '\0' ? fault : "no fault", fault, cost.golden, cost.seconds);
    };
    row("", TAKEN);
    row("garbage 1", UNREAD);
    row("six-fields 1", UNREAD);
    row("eight-fields 1", UNREAD);
    row("empty-fields 1", UNREAD);
    row("letters 1", UNREAD);
    row("decimal-comma 1", UNREAD);
    row("no-id 1", UNREAD);
    row("bare-id 1", UNREAD);
    row("big-id 1", UNREAD);
    row("field 1 abc 1", UNREAD);
    row("field 2 5.0A 1", UNREAD);
    row("field 5 ID=12abc 1", UNREAD);
    row("doubled-letter 1", UNREAD);
    row("wrong-letter 1 X", NO_STATE);
    row("wrong-letter 1 c", NO_STATE);
    row("stuck-state X 1", NO_STATE);
    row("lone-cr 1", SWALLOWED);
    row("lone-lf 1", SWALLOWED);
    row("lost-line-end 1", SWALLOWED);
    row("nul 1", LOST);
    row("invalid-utf8 1", TAKEN);
    row("split-bytes 1", TAKEN);
    row("babble 50000", TAKEN);
    row("echo", TAKEN);
    row("field 0 %1 1", TAKEN);
    row("field 3 -1e999 1", TAKEN);
    row("field 5 ID=0x7 1", TAKEN);
    row("field 5 7 1", TAKEN);
    row("id %1", TAKEN);
    row("merge 3", LATE);
    row("burst 2", LATE);
}

void WholeTextFaultsTest::garbled_lines_cost_what_they_cost()
{
    QFETCH(QString, fault);
    QFETCH(QString, golden);
    QFETCH(int, seconds);
    PhaseTour tour(fault);
    QVERIFY(tour.run());
    QCOMPARE(tour.test.difference_from(golden), QString());
    QCOMPARE(tour.test.station.current_cycle->amp_hours, seconds * LOAD_AMPS / 3600.0);
    QCOMPARE(tour.visited, PhaseTour::every_phase());
    QVERIFY(tour.test.bench.answers.seen.empty());
}

void WholeTextFaultsTest::absurd_numbers_are_taken_as_they_are_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QSet<Phase>>("phases");
    QTest::addColumn<QString>("golden");
    const QSet<Phase> all = PhaseTour::every_phase();
    // In a discharge it would do to the totals what "inf" does.
    const QSet<Phase> but_discharge = all - QSet<Phase>{PHASE_DISCHARGING};
    QTest::newRow("inf") << "inf 1" << all << "lines_inf";
    QTest::newRow("nan") << "nan 1" << but_discharge << "lines_nan";
    QTest::newRow("negative current") << "field 2 -5.0 1" << all << "lines_negative";
}

void WholeTextFaultsTest::absurd_numbers_are_taken_as_they_are()
{
    QFETCH(QString, fault);
    QFETCH(QSet<Phase>, phases);
    QFETCH(QString, golden);
    PhaseTour tour(fault, phases);
    QVERIFY(tour.run());
    QCOMPARE(tour.test.difference_from(golden), QString());
    QVERIFY(tour.test.bench.answers.seen.empty());
}

void WholeTextFaultsTest::a_number_beyond_all_bounds_fills_rows_but_ends_nothing()
{
    PhaseTour tour("1e308 1");
    QVERIFY(tour.run());
    const QByteArray number = QByteArray::number(1e308, 'f', 2);
    QCOMPARE(number.size(), 312);
    QVERIFY(tour.test.bench.csv().contains("1.0," + number + '\n'));
}

void WholeTextFaultsTest::megabytes_without_a_line_end_belong_to_a_field_that_nobody_reads()
{
    PhaseTour tour("babble 3000000", {PHASE_DISCHARGING});
    QVERIFY(tour.run());
    QCOMPARE(tour.test.difference_from(TAKEN.golden), QString());
}

void WholeTextFaultsTest::every_phase_is_struck()
{
    PhaseTour tour("id 10%1");
    int changes = 0;
    connect(tour.test.bench.instrument, &Kestrometer::sig_id_change, [&changes] { ++changes; });
    QVERIFY(tour.run());
    QCOMPARE(changes, PhaseTour::every_phase().size());
    QCOMPARE(tour.test.bench.instrument->id, 1010);
    QVERIFY(tour.test.bench.widget<QLabel>("laStationID")->text().endsWith("Station 1010"));
}

KEST_TEST(WholeTextFaultsTest)
#include "tst_whole_text_faults.moc"
