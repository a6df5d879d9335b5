#include "common/widget_grid.h"
#include "support/test_program.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QtTest>

namespace
{
/** A widget that wants exactly this much room. */
class Block : public QWidget
{
public:
    explicit Block(const QSize& new_size) : size(new_size)
    {
    }

    QSize minimumSizeHint() const override
    {
        ++times_asked;
        return size;
    }

    QSize size;
    mutable int times_asked = 0;
};

int gap()
{
    return QLabel(" ").minimumSizeHint().width();
}

QSize place(WidgetGrid& grid, QWidget* parent)
{
    int width = -1;
    int height = -1;
    grid.place_widgets(parent, width, height);
    return {width, height};
}

bool is_pinned(const QWidget& widget, const QSize& size)
{
    return widget.minimumSize() == size && widget.maximumSize() == size;
}
}  // namespace

class WidgetGridTest : public QObject
{
    Q_OBJECT

private slots:
    void a_new_grid_is_empty();
    void the_size_is_stored();
    void an_empty_cell_stays_empty_when_it_is_read();
    void a_widget_set_again_replaces_the_first();
    void an_unset_column_is_left_when_asked_and_at_zero_when_placed();
    void an_alignment_set_again_replaces_the_first();
    void the_alignment_gives_the_left_edge_data();
    void the_alignment_gives_the_left_edge();
    void widgets_stand_in_the_middle_of_their_row();
    void odd_rests_are_cut_off();
    void the_cells_follow_each_other_with_their_gaps();
    void a_row_without_widgets_is_a_gap_high();
    void a_column_without_widgets_is_a_gap_wide();
    void all_but_justified_widgets_are_pinned_to_their_hint();
    void justified_widgets_keep_their_limits();
    void a_combo_box_keeps_the_width_of_its_owner();
    void cells_beyond_the_size_are_left_alone();
    void the_widgets_are_shown_on_the_parent();
    void widgets_are_placed_again_after_a_change();
    void each_hint_is_asked_for_twice();
};

void WidgetGridTest::a_new_grid_is_empty()
{
    WidgetGrid grid;
    QCOMPARE(grid.get_rows(), 0);
    QCOMPARE(grid.get_cols(), 0);
    QWidget parent;
    QCOMPARE(place(grid, &parent), QSize(0, 0));
}

void WidgetGridTest::the_size_is_stored()
{
    WidgetGrid grid;
    grid.set_size(2, 3);
    QCOMPARE(grid.get_rows(), 2);
    QCOMPARE(grid.get_cols(), 3);
}

void WidgetGridTest::an_empty_cell_stays_empty_when_it_is_read()
{
    WidgetGrid grid;
    grid.set_size(1, 1);
    for (int i = 0; i < 2; ++i)
        QVERIFY(grid.get_widget(0, 0) == nullptr);
    QWidget parent;
    QCOMPARE(place(grid, &parent), QSize(gap(), gap()));
}

void WidgetGridTest::a_widget_set_again_replaces_the_first()
{
    QWidget parent;
    Block first({50, 60});
    Block second({10, 20});
    WidgetGrid grid;
    grid.set_size(1, 1);
    grid.set_widget(0, 0, &first);
    grid.set_widget(0, 0, &second);
    QCOMPARE(grid.get_widget(0, 0), &second);
    QCOMPARE(place(grid, &parent), QSize(10 + gap(), 20 + gap()));
    QVERIFY(first.parentWidget() == nullptr);
}

void WidgetGridTest::an_unset_column_is_left_when_asked_and_at_zero_when_placed()
{
    QWidget parent;
    Block first({50, 10});
    Block second({30, 10});
    WidgetGrid grid;
    grid.set_size(1, 2);
    grid.set_widget(0, 0, &first);
    grid.set_widget(0, 1, &second);
    grid.set_col_alignment(0, Qt::AlignLeft);
    QCOMPARE(grid.get_col_alignment(1), Qt::Alignment(Qt::AlignLeft));
    place(grid, &parent);
    QCOMPARE(second.x(), 0);
    QVERIFY(is_pinned(second, {30, 10}));
    QCOMPARE(grid.get_col_alignment(1), Qt::Alignment(Qt::AlignLeft));
}

void WidgetGridTest::an_alignment_set_again_replaces_the_first()
{
    WidgetGrid grid;
    grid.set_col_alignment(4, Qt::AlignRight);
    grid.set_col_alignment(4, Qt::AlignHCenter);
    QCOMPARE(grid.get_col_alignment(4), Qt::Alignment(Qt::AlignHCenter));
}

void WidgetGridTest::the_alignment_gives_the_left_edge_data()
{
    QTest::addColumn<int>("alignment");
    QTest::addColumn<int>("left");
    const int x = 40 + gap();
    const int room = 100 + gap();
    QTest::newRow("left") << int(Qt::AlignLeft) << x;
    QTest::newRow("justified") << int(Qt::AlignJustify) << x;
    QTest::newRow("right") << int(Qt::AlignRight) << x + room - 31;
    QTest::newRow("centred") << int(Qt::AlignHCenter) << x + (room - 31) / 2;
    QTest::newRow("none") << 0 << 0;
    QTest::newRow("vertical only") << int(Qt::AlignTop) << 0;
    QTest::newRow("both ways") << int(Qt::AlignRight | Qt::AlignVCenter) << 0;
}

void WidgetGridTest::the_alignment_gives_the_left_edge()
{
    QFETCH(int, alignment);
    QFETCH(int, left);
    QWidget parent;
    Block corner({40, 10});
    Block wide({100, 10});
    Block narrow({31, 10});
    WidgetGrid grid;
    grid.set_size(2, 2);
    grid.set_widget(0, 0, &corner);
    grid.set_widget(0, 1, &wide);
    grid.set_widget(1, 1, &narrow);
    grid.set_col_alignment(1, Qt::Alignment(alignment));
    place(grid, &parent);
    QCOMPARE(narrow.x(), left);
    if (alignment == Qt::AlignRight)
        QCOMPARE(narrow.geometry().right(), wide.geometry().right());
}

void WidgetGridTest::widgets_stand_in_the_middle_of_their_row()
{
    QWidget parent;
    Block high({10, 80});
    Block low({10, 20});
    WidgetGrid grid;
    grid.set_size(1, 2);
    grid.set_widget(0, 0, &high);
    grid.set_widget(0, 1, &low);
    place(grid, &parent);
    QCOMPARE(high.y(), gap() / 2);
    QCOMPARE(low.y(), (80 + gap() - 20) / 2);
}

void WidgetGridTest::odd_rests_are_cut_off()
{
    QWidget parent;
    Block high({10, 41});
    Block low({10, 20});
    Block even_lower({10, 19});
    WidgetGrid grid;
    grid.set_size(1, 3);
    grid.set_widget(0, 0, &high);
    grid.set_widget(0, 1, &low);
    grid.set_widget(0, 2, &even_lower);
    place(grid, &parent);
    QCOMPARE(low.y(), (21 + gap()) / 2);
    QCOMPARE(even_lower.y(), (22 + gap()) / 2);
}

void WidgetGridTest::the_cells_follow_each_other_with_their_gaps()
{
    QWidget parent;
    Block top_left({20, 10});
    Block top_right({5, 30});
    Block bottom_left({40, 7});
    Block bottom_right({9, 9});
    WidgetGrid grid;
    grid.set_size(2, 2);
    grid.set_widget(0, 0, &top_left);
    grid.set_widget(0, 1, &top_right);
    grid.set_widget(1, 0, &bottom_left);
    grid.set_widget(1, 1, &bottom_right);
    grid.set_col_alignment(0, Qt::AlignLeft);
    grid.set_col_alignment(1, Qt::AlignLeft);
    QCOMPARE(place(grid, &parent), QSize(40 + 9 + 2 * gap(), 30 + 9 + 2 * gap()));
    QCOMPARE(top_left.pos(), QPoint(0, (30 + gap() - 10) / 2));
    QCOMPARE(top_right.pos(), QPoint(40 + gap(), gap() / 2));
    QCOMPARE(bottom_left.pos(), QPoint(0, 30 + gap() + (9 + gap() - 7) / 2));
    QCOMPARE(bottom_right.pos(), QPoint(40 + gap(), 30 + gap() + gap() / 2));
}

void WidgetGridTest::a_row_without_widgets_is_a_gap_high()
{
    QWidget parent;
    Block block({20, 10});
    WidgetGrid grid;
    grid.set_size(3, 1);
    grid.set_widget(2, 0, &block);
    QCOMPARE(place(grid, &parent), QSize(20 + gap(), 10 + 3 * gap()));
    QCOMPARE(block.y(), 2 * gap() + gap() / 2);
}

void WidgetGridTest::a_column_without_widgets_is_a_gap_wide()
{
    QWidget parent;
    Block block({20, 10});
    WidgetGrid grid;
    grid.set_size(1, 3);
    grid.set_widget(0, 1, &block);
    grid.set_col_alignment(1, Qt::AlignLeft);
    QCOMPARE(place(grid, &parent), QSize(20 + 3 * gap(), 10 + gap()));
    QCOMPARE(block.x(), gap());
}

void WidgetGridTest::all_but_justified_widgets_are_pinned_to_their_hint()
{
    for (const Qt::AlignmentFlag alignment : {Qt::AlignLeft, Qt::AlignRight, Qt::AlignHCenter}) {
        QWidget parent;
        Block block({20, 10});
        block.setMinimumSize(3, 3);
        block.setMaximumSize(500, 500);
        WidgetGrid grid;
        grid.set_size(1, 1);
        grid.set_widget(0, 0, &block);
        grid.set_col_alignment(0, alignment);
        place(grid, &parent);
        QVERIFY(is_pinned(block, {20, 10}));
        QCOMPARE(block.QWidget::size(), QSize(20, 10));
    }
}

void WidgetGridTest::justified_widgets_keep_their_limits()
{
    QWidget parent;
    Block block({20, 10});
    block.setMinimumSize(30, 12);
    block.setMaximumSize(300, 120);
    WidgetGrid grid;
    grid.set_size(1, 1);
    grid.set_widget(0, 0, &block);
    grid.set_col_alignment(0, Qt::AlignJustify);
    QCOMPARE(place(grid, &parent), QSize(20 + gap(), 10 + gap()));
    QCOMPARE(block.minimumSize(), QSize(30, 12));
    QCOMPARE(block.maximumSize(), QSize(300, 120));
}

void WidgetGridTest::a_combo_box_keeps_the_width_of_its_owner()
{
    QWidget parent;
    QComboBox box;
    box.addItem("Station 31");
    box.setFixedWidth(173);
    const int height = box.minimumSizeHint().height();
    QVERIFY(box.minimumSizeHint().width() != 173);
    for (const Qt::AlignmentFlag alignment : {Qt::AlignJustify, Qt::AlignRight}) {
        WidgetGrid grid;
        grid.set_size(1, 1);
        grid.set_widget(0, 0, &box);
        grid.set_col_alignment(0, alignment);
        QCOMPARE(place(grid, &parent), QSize(173 + gap(), height + gap()));
        QCOMPARE(box.width(), 173);
        QCOMPARE(box.x(), alignment == Qt::AlignRight ? gap() : 0);
    }
    QVERIFY(is_pinned(box, {173, height}));
}

void WidgetGridTest::cells_beyond_the_size_are_left_alone()
{
    QWidget parent;
    Block inside({20, 10});
    Block below({200, 100});
    Block beside({200, 100});
    WidgetGrid grid;
    grid.set_size(2, 2);
    grid.set_widget(0, 0, &inside);
    grid.set_widget(1, 0, &below);
    grid.set_widget(0, 1, &beside);
    grid.set_size(1, 1);
    QCOMPARE(place(grid, &parent), QSize(20 + gap(), 10 + gap()));
    for (const Block* outside : {&below, &beside}) {
        QVERIFY(outside->parentWidget() == nullptr);
        QCOMPARE(outside->times_asked, 0);
    }
    QCOMPARE(grid.get_widget(1, 0), &below);
}

void WidgetGridTest::the_widgets_are_shown_on_the_parent()
{
    QWidget parent;
    Block block({20, 10});
    block.hide();
    QLabel label("label");
    WidgetGrid grid;
    grid.set_size(1, 2);
    grid.set_widget(0, 0, &block);
    grid.set_widget(0, 1, &label);
    place(grid, &parent);
    parent.show();
    for (const QWidget* widget : QList<const QWidget*>{&block, &label}) {
        QCOMPARE(widget->parentWidget(), &parent);
        QVERIFY(widget->isVisible());
    }
}

void WidgetGridTest::widgets_are_placed_again_after_a_change()
{
    QWidget parent;
    QWidget other_parent;
    Block block({20, 10});
    WidgetGrid grid;
    grid.set_size(1, 1);
    grid.set_widget(0, 0, &block);
    grid.set_col_alignment(0, Qt::AlignLeft);
    place(grid, &parent);
    block.size = {35, 25};
    QCOMPARE(place(grid, &other_parent), QSize(35 + gap(), 25 + gap()));
    QCOMPARE(block.parentWidget(), &other_parent);
    QVERIFY(is_pinned(block, {35, 25}));
}

void WidgetGridTest::each_hint_is_asked_for_twice()
{
    QWidget parent;
    Block block({20, 10});
    block.setAttribute(Qt::WA_Resized);
    WidgetGrid grid;
    grid.set_size(1, 1);
    grid.set_widget(0, 0, &block);
    place(grid, &parent);
    QCOMPARE(block.times_asked, 2);
}

KEST_TEST(WidgetGridTest)
#include "tst_widget_grid.moc"
