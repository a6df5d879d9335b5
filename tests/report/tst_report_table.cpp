#include "recorded_texts.h"
#include "report_page_bench.h"
#include "support/test_program.h"

#include <QtTest>

#include <cmath>

/** The table on the page: which discharges, which figures, and where. */
class ReportTableTest : public QObject
{
    Q_OBJECT

private slots:
    void the_table_has_a_column_for_each_ticked_cycle();
    void without_a_tick_the_table_has_its_labels_only();
    void left_out_cycles_leave_a_gap_in_the_numbers();
    void a_cycle_has_figures_only_above_a_tenth_of_an_amp_hour_data();
    void a_cycle_has_figures_only_above_a_tenth_of_an_amp_hour();
    void a_cycle_without_readings_says_so();
    void table_lines_are_a_pixel_wide();
    void many_cycles_run_off_the_page();
};

namespace
{
/** The texts between the sub-title and the first chart, row by row. */
QList<QStringList> table_of(const RecordingPaintDevice& device, int columns)
{
    QStringList texts = {""};  // the empty cell, of which a device hears nothing
    for (const RecordedText& text : recorded_texts(device).mid(2, 6 * columns - 1))
        texts << text.text;
    QList<QStringList> rows;
    for (int first = 0; first < texts.size(); first += columns)
        rows << texts.mid(first, columns);
    return rows;
}

QStringList vertical_lines(const RecordingPaintDevice& device, int from_y, int to_y)
{
    QStringList found;
    for (const QString& line : device.drawn("line")) {
        const QStringList ends = line.split(' ');
        const double first_y = ends[0].section(',', 1).toDouble();
        const double second_y = ends[1].section(',', 1).toDouble();
        if (ends[0].section(',', 0, 0) == ends[1].section(',', 0, 0) && first_y >= from_y &&
            second_y <= to_y)
            found << line;
    }
    return found;
}
}  // namespace

void ReportTableTest::the_table_has_a_column_for_each_ticked_cycle()
{
    ReportPageBench bench;
    bench.add_cycle(4.0);
    bench.add_cycle(3.456);
    const QList<QStringList> expected = {
        {"", "Discharge # 1", "Discharge # 2"},
        {"Date", "2020-04-03", "2020-04-04"},
        {"Discharge Capacity", "4.00 Ah", "3.46 Ah"},
        {"Discharge Energy", "90.00 Wh", "77.76 Wh"},
        {"Avg. Discharge Current", "2.00 A", "2.00 A"},
        {"Avg. Int. Resistance", "65 mOhm", "65 mOhm"},
    };
    const RecordingPaintDevice& device = bench.plot();
    QCOMPARE(table_of(device, 3), expected);
    QCOMPARE(recorded_text(device, "Date").font, QString("DejaVu Sans 8 points weight 57"));
    QCOMPARE(recorded_text(device, "4.00 Ah").font, QString("DejaVu Sans 8 points weight 50"));

    // The first row is centred in its column, what is below begins at its left line.
    const QStringList verticals = vertical_lines(device, 1500, 2100);
    QCOMPARE(verticals.size(), 4);
    const double left = verticals[1].section(',', 0, 0).toDouble();
    const double right = verticals[2].section(',', 0, 0).toDouble();
    QCOMPARE(recorded_text(device, "Discharge # 1").anchor.x(),
             left + std::floor((right - left) / 2));
    QVERIFY(recorded_text(device, "4.00 Ah").anchor.x() < left + (right - left) / 4);
}

void ReportTableTest::without_a_tick_the_table_has_its_labels_only()
{
    ReportPageBench bench;
    bench.add_cycle(4.0, false);
    const RecordingPaintDevice& device = bench.plot();
    const QList<QStringList> expected = {{""},
                                         {"Date"},
                                         {"Discharge Capacity"},
                                         {"Discharge Energy"},
                                         {"Avg. Discharge Current"},
                                         {"Avg. Int. Resistance"}};
    QCOMPARE(table_of(device, 1), expected);
    QCOMPARE(vertical_lines(device, 1500, 2100).size(), 2);
}

void ReportTableTest::left_out_cycles_leave_a_gap_in_the_numbers()
{
    ReportPageBench bench;
    for (int i = 1; i <= 5; ++i)
        bench.add_cycle(1.0 + i, i == 2 || i == 5);
    const QList<QStringList> table = table_of(bench.plot(), 3);
    QCOMPARE(table[0], QStringList({"", "Discharge # 2", "Discharge # 5"}));
    QCOMPARE(table[1], QStringList({"Date", "2020-04-04", "2020-04-07"}));
    QCOMPARE(table[2], QStringList({"Discharge Capacity", "3.00 Ah", "6.00 Ah"}));
}

void ReportTableTest::a_cycle_has_figures_only_above_a_tenth_of_an_amp_hour_data()
{
    QTest::addColumn<double>("amp_hours");
    QTest::addColumn<QStringList>("figures");
    const QStringList none = {"---", "---", "---", "---"};
    QTest::newRow("none at all") << 0.0 << none;
    QTest::newRow("exactly") << 0.1 << none;
    QTest::newRow("just above") << std::nextafter(0.1, 1.0)
                                << QStringList({"0.10 Ah", "2.25 Wh", "2.00 A", "65 mOhm"});
    QTest::newRow("no number") << qQNaN() << none;
}

void ReportTableTest::a_cycle_has_figures_only_above_a_tenth_of_an_amp_hour()
{
    QFETCH(double, amp_hours);
    ReportPageBench bench;
    bench.add_cycle(1.0);
    bench.report.cycles[0].amp_hours = amp_hours;
    bench.report.cycles[0].watt_hours = 2.25;
    const QList<QStringList> table = table_of(bench.plot(), 2);
    QStringList figures;
    for (const QStringList& row : table.mid(2))
        figures << row[1];
    QTEST(figures, "figures");
    QCOMPARE(table[0][1], QString("Discharge # 1"));
    QCOMPARE(table[1][1], QString("2020-04-03"));
}

void ReportTableTest::a_cycle_without_readings_says_so()
{
    ReportPageBench bench;
    bench.add_cycle(1.0).resistance.points.clear();
    bench.report.cycles[0].resistance = "? mOhm";
    QCOMPARE(table_of(bench.plot(), 2)[5], QStringList({"Avg. Int. Resistance", "? mOhm"}));
}

void ReportTableTest::table_lines_are_a_pixel_wide()
{
    ReportPageBench bench;
    bench.add_cycle(1.0);
    const RecordingPaintDevice& device = bench.plot();
    const QStringList horizontals = device.drawn("line").mid(0, 7);
    for (int row = 0; row < 7; ++row)
        QVERIFY(horizontals[row].startsWith(QString("450,%1 ").arg(1500 + 100 * row)));
    const QStringList pens = settings_at(device, "pen", "line ").mid(0, 10);
    QCOMPARE(pens.count("#000000 width 1 style 1 cap 10 join 40"), 10);
}

void ReportTableTest::many_cycles_run_off_the_page()
{
    ReportPageBench bench;
    for (int i = 0; i < 30; ++i)
        bench.add_cycle(0.5);
    const RecordingPaintDevice& device = bench.plot();
    const RecordedText last = recorded_text(device, "Discharge # 30");
    QVERIFY(last.anchor.x() > PAGE.width());
    QCOMPARE(last.font, QString("DejaVu Sans 8 points weight 57"));
    QCOMPARE(last.anchor.y(), recorded_text(device, "Discharge # 1").anchor.y());
}

KEST_TEST(ReportTableTest)
#include "tst_report_table.moc"
