#include "charts/expected_drawing.h"
#include "recorded_texts.h"
#include "report/string_grid.h"
#include "support/test_program.h"

#include <QFontMetrics>
#include <QPainter>
#include <QtTest>

#include <limits>

class StringGridTest : public QObject
{
    Q_OBJECT

private slots:
    void a_new_grid_is_empty();
    void a_size_gives_empty_cells_and_no_widths();
    void a_new_size_loses_texts_widths_and_alignments_but_not_the_row_height();
    void widths_and_heights_are_truncated_data();
    void widths_and_heights_are_truncated();
    void a_column_is_as_wide_as_its_widest_text_needs();
    void a_wider_column_keeps_its_width();
    void a_second_plot_never_narrows();
    void texts_are_measured_in_the_weight_found_on_entry();
    void lines_are_drawn_one_by_one_from_the_truncated_corner();
    void without_cells_only_the_outer_lines_are_drawn_data();
    void without_cells_only_the_outer_lines_are_drawn();
    void a_text_is_anchored_by_its_columns_alignment_data();
    void a_text_is_anchored_by_its_columns_alignment();
    void the_first_row_is_centred_on_request();
    void halves_are_truncated();
    void texts_hang_in_the_middle_of_their_row();
    void the_first_row_and_column_are_heavier();
    void the_font_keeps_its_family_and_size_and_nothing_else();
    void the_font_is_left_in_the_weight_of_the_last_cell();
    void lines_come_before_texts();
};

namespace
{
/** A painter on a page of 600 dots per inch, in a font that is the same on every machine. */
struct Page
{
    Page() : device(4000, 4000, 600), painter(&device)
    {
        painter.setFont(pinned_font(8));
    }

    QFontMetrics metrics() const
    {
        return painter.fontMetrics();
    }

    int space() const
    {
        return metrics().horizontalAdvance(' ');
    }

    RecordingPaintDevice device;
    QPainter painter;
};

StringGrid grid_of(const QList<QStringList>& rows)
{
    StringGrid grid;
    grid.set_size(rows.size(), rows.first().size());
    grid.set_row_height(100);
    for (int row = 0; row < rows.size(); ++row) {
        for (int col = 0; col < rows[row].size(); ++col)
            grid.set_text(row, col, rows[row][col]);
    }
    return grid;
}

StringGrid two_by_two()
{
    return grid_of({{"a", "b"}, {"c", "d"}});
}
}  // namespace

void StringGridTest::a_new_grid_is_empty()
{
    const StringGrid grid;
    QCOMPARE(grid.get_num_rows(), 0);
    QCOMPARE(grid.get_num_cols(), 0);
    QCOMPARE(grid.get_total_width(), 0);
    QCOMPARE(grid.get_total_height(), 0);
}

void StringGridTest::a_size_gives_empty_cells_and_no_widths()
{
    Page page;
    StringGrid grid;
    grid.set_size(3, 2);
    QCOMPARE(grid.get_num_rows(), 3);
    QCOMPARE(grid.get_num_cols(), 2);
    QCOMPARE(grid.get_total_width(), 0);
    QCOMPARE(grid.get_total_height(), 0);
    grid.plot_text(&page.painter, QPointF(0, 0));
    for (const RecordedText& text : recorded_texts(page.device))
        QCOMPARE(text.text, QString());
}

void StringGridTest::a_new_size_loses_texts_widths_and_alignments_but_not_the_row_height()
{
    Page page;
    StringGrid grid = two_by_two();
    grid.set_col_width(1, 300);
    grid.set_col_alignment(0, Qt::AlignRight);
    grid.set_size(2, 2);
    QCOMPARE(grid.get_total_width(), 0);
    QCOMPARE(grid.get_total_height(), 200);
    grid.plot_text(&page.painter, QPointF(0, 0));
    QVERIFY(recorded_text(page.device, "a").text.isNull());

    grid.set_text(0, 0, "left");
    grid.plot_text(&page.painter, QPointF(0, 0));
    QCOMPARE(recorded_text(page.device, "left").anchor.x(), double(page.space()));
}

void StringGridTest::widths_and_heights_are_truncated_data()
{
    QTest::addColumn<double>("given");
    QTest::addColumn<int>("taken");
    QTest::newRow("whole") << 50.0 << 50;
    QTest::newRow("just below the next") << 50.999 << 50;
    QTest::newRow("below zero") << -0.9 << 0;
    QTest::newRow("beyond an int") << 1e300 << std::numeric_limits<int>::max();
    QTest::newRow("no number") << qQNaN() << 0;
}

void StringGridTest::widths_and_heights_are_truncated()
{
    QFETCH(double, given);
    StringGrid grid;
    grid.set_size(1, 1);
    grid.set_col_width(0, given);
    grid.set_row_height(given);
    QTEST(grid.get_total_width(), "taken");
    QTEST(grid.get_total_height(), "taken");
}

void StringGridTest::a_column_is_as_wide_as_its_widest_text_needs()
{
    Page page;
    const int blank = page.space();
    const int label = page.metrics().horizontalAdvance("Discharge Capacity");
    const int figure = page.metrics().horizontalAdvance("1234.56 Ah");

    StringGrid labels = grid_of({{"Date"}, {"Discharge Capacity"}, {"x"}});
    labels.ensure_text_will_fit(&page.painter);
    // Two blanks to each side: the room for the heavier weight of the first column.
    QCOMPARE(labels.get_total_width(), label + 4 * blank);

    page.painter.setFont(pinned_font(8));
    StringGrid both = grid_of({{"Date", "x"}, {"Discharge Capacity", "1234.56 Ah"}});
    both.ensure_text_will_fit(&page.painter);
    QCOMPARE(both.get_total_width(), label + 4 * blank + figure + 2 * blank);
}

void StringGridTest::a_wider_column_keeps_its_width()
{
    Page page;
    StringGrid grid = two_by_two();
    grid.set_col_width(0, 500);
    grid.set_col_width(1, 700);
    grid.plot(&page.painter, QPointF(0, 0));
    QCOMPARE(grid.get_total_width(), 1200);
}

void StringGridTest::a_second_plot_never_narrows()
{
    Page page;
    StringGrid grid = two_by_two();
    grid.plot(&page.painter, QPointF(0, 0));
    const int width = grid.get_total_width();
    page.painter.setFont(pinned_font(4));
    grid.plot(&page.painter, QPointF(0, 0));
    QCOMPARE(grid.get_total_width(), width);
    page.painter.setFont(pinned_font(16));
    grid.plot(&page.painter, QPointF(0, 0));
    QVERIFY(grid.get_total_width() > width);
}

void StringGridTest::texts_are_measured_in_the_weight_found_on_entry()
{
    Page page;
    QFont bold = pinned_font(8);
    bold.setWeight(QFont::Bold);
    page.painter.setFont(bold);
    const QFontMetrics metrics = page.metrics();
    StringGrid grid = grid_of({{"", ""}, {"", "wide words"}});
    grid.ensure_text_will_fit(&page.painter);
    const int blank = metrics.horizontalAdvance(' ');
    QCOMPARE(grid.get_total_width(), 6 * blank + metrics.horizontalAdvance("wide words"));
    QCOMPARE(page.painter.font().weight(), int(QFont::Normal));
}

void StringGridTest::lines_are_drawn_one_by_one_from_the_truncated_corner()
{
    Page page;
    StringGrid grid = two_by_two();
    grid.set_col_width(0, 30);
    grid.set_col_width(1, 50);
    grid.plot_grid(&page.painter, QPointF(10.9, 20.9));
    const QStringList expected = {"10,20 90,20",  "10,120 90,120", "10,220 90,220",
                                  "10,20 10,220", "40,20 40,220",  "90,20 90,220"};
    QCOMPARE(page.device.drawn("line"), expected);
}

void StringGridTest::without_cells_only_the_outer_lines_are_drawn_data()
{
    QTest::addColumn<QSize>("columns_and_rows");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("nothing at all") << QSize(0, 0) << QStringList({"10,20 10,20", "10,20 10,20"});
    QTest::newRow("no rows") << QSize(2, 0)
                             << QStringList(
                                    {"10,20 80,20", "10,20 10,20", "40,20 40,20", "80,20 80,20"});
    QTest::newRow("no columns") << QSize(0, 2)
                                << QStringList({"10,20 10,20", "10,120 10,120", "10,220 10,220",
                                                "10,20 10,220"});
}

void StringGridTest::without_cells_only_the_outer_lines_are_drawn()
{
    QFETCH(QSize, columns_and_rows);
    QFETCH(QStringList, lines);
    Page page;
    StringGrid grid;
    grid.set_size(columns_and_rows.height(), columns_and_rows.width());
    grid.set_row_height(100);
    for (int col = 0; col < columns_and_rows.width(); ++col)
        grid.set_col_width(col, col == 0 ? 30 : 40);
    grid.plot_grid(&page.painter, QPointF(10, 20));
    grid.plot_text(&page.painter, QPointF(10, 20));
    QCOMPARE(page.device.drawn("line"), lines);
    QCOMPARE(recorded_texts(page.device).size(), 0);

    if (columns_and_rows.width() == 0) {
        const QFont before = page.painter.font();
        grid.ensure_text_will_fit(&page.painter);
        QCOMPARE(page.painter.font(), before);
    }
}

void StringGridTest::a_text_is_anchored_by_its_columns_alignment_data()
{
    QTest::addColumn<int>("alignment");
    QTest::addColumn<int>("x");
    Page page;
    QTest::newRow("left: a blank behind its line") << int(Qt::AlignLeft) << 400 + page.space();
    QTest::newRow("right: a blank before its line") << int(Qt::AlignRight) << 701 - page.space();
    QTest::newRow("centre") << int(Qt::AlignHCenter) << 400 + 150;
    QTest::newRow("any other: the page's edge") << int(Qt::AlignJustify) << 0;
    QTest::newRow("a combined one: the page's edge") << int(Qt::AlignCenter) << 0;
}

void StringGridTest::a_text_is_anchored_by_its_columns_alignment()
{
    QFETCH(int, alignment);
    QFETCH(int, x);
    Page page;
    StringGrid grid = two_by_two();
    grid.set_col_width(0, 300);
    grid.set_col_width(1, 301);
    grid.set_col_alignment(1, Qt::Alignment(alignment));
    grid.plot(&page.painter, QPointF(100, 50));
    QCOMPARE(recorded_text(page.device, "b").anchor.x(), double(x));
    QCOMPARE(recorded_text(page.device, "d").anchor.x(), double(x));
    QCOMPARE(recorded_text(page.device, "c").anchor.x(), 100.0 + page.space());
}

void StringGridTest::the_first_row_is_centred_on_request()
{
    Page page;
    StringGrid grid = two_by_two();
    grid.set_col_width(0, 300);
    grid.set_col_width(1, 300);
    grid.set_col_alignment(1, Qt::AlignRight);
    grid.set_center_first_row(true);
    grid.plot(&page.painter, QPointF(100, 50));
    QCOMPARE(recorded_text(page.device, "a").anchor.x(), 250.0);
    QCOMPARE(recorded_text(page.device, "b").anchor.x(), 550.0);
    QCOMPARE(recorded_text(page.device, "c").anchor.x(), 100.0 + page.space());
    QCOMPARE(recorded_text(page.device, "d").anchor.x(), 700.0 - page.space());
}

void StringGridTest::halves_are_truncated()
{
    Page page;
    StringGrid grid = two_by_two();
    grid.set_center_first_row(true);
    grid.set_col_width(0, 301);
    grid.set_row_height(page.metrics().height() + 51);
    grid.plot(&page.painter, QPointF(100.9, 50.9));
    QCOMPARE(recorded_text(page.device, "a").anchor, QPointF(250, 75));
}

void StringGridTest::texts_hang_in_the_middle_of_their_row()
{
    Page page;
    const int inset = (100 - page.metrics().height()) / 2;
    StringGrid grid = two_by_two();
    grid.plot(&page.painter, QPointF(0, 50));
    QCOMPARE(recorded_text(page.device, "b").anchor.y(), 50.0 + inset);
    QCOMPARE(recorded_text(page.device, "d").anchor.y(), 150.0 + inset);
}

void StringGridTest::the_first_row_and_column_are_heavier()
{
    Page page;
    StringGrid grid = two_by_two();
    grid.plot(&page.painter, QPointF(0, 0));
    for (const char* const heavier : {"a", "b", "c"})
        QCOMPARE(recorded_text(page.device, heavier).font,
                 QString("DejaVu Sans 8 points weight 57"));
    QCOMPARE(recorded_text(page.device, "d").font, QString("DejaVu Sans 8 points weight 50"));
}

void StringGridTest::the_font_keeps_its_family_and_size_and_nothing_else()
{
    Page page;
    QFont font = pinned_font(11);
    font.setItalic(true);
    font.setUnderline(true);
    page.painter.setFont(font);
    StringGrid grid = two_by_two();
    grid.plot(&page.painter, QPointF(0, 0));
    QCOMPARE(recorded_text(page.device, "d").font, QString("DejaVu Sans 11 points weight 50"));
    QVERIFY(!page.painter.font().underline());
}

void StringGridTest::the_font_is_left_in_the_weight_of_the_last_cell()
{
    Page page;
    StringGrid grid = two_by_two();
    grid.plot(&page.painter, QPointF(0, 0));
    QCOMPARE(page.painter.font().weight(), 50);
    StringGrid one_row = grid_of({{"a", "b"}});
    one_row.plot(&page.painter, QPointF(0, 0));
    QCOMPARE(page.painter.font().weight(), 57);
}

void StringGridTest::lines_come_before_texts()
{
    Page page;
    StringGrid grid = two_by_two();
    grid.plot(&page.painter, QPointF(0, 0));
    QString kinds;
    for (const QString& line : page.device.lines) {
        if (line.startsWith("line ") || line.startsWith("text "))
            kinds += line[0];
    }
    QCOMPARE(kinds, QString("lllllltttt"));
}

KEST_TEST(StringGridTest)
#include "tst_string_grid.moc"
