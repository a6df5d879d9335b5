#include "station/test_station.h"

#include "common/colors.h"
#include "device/kestrometer.h"
#include "support/station_bench.h"
#include "support/test_program.h"

#include <QAbstractItemView>
#include <QLabel>
#include <QListView>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QtTest>

namespace
{
const QColor WHITE_TEXT = Colors::white;
const QColor BLACK_TEXT = Colors::black;

struct Offered
{
    const char* name;
    QColor color;
    QColor text;
};

const Offered OFFERED[] = {
    {"black", {0, 0, 0}, WHITE_TEXT},      {"brown", {87, 49, 5}, WHITE_TEXT},
    {"red", {255, 0, 0}, BLACK_TEXT},      {"orange", {255, 127, 0}, BLACK_TEXT},
    {"yellow", {255, 255, 0}, BLACK_TEXT}, {"green", {0, 127, 0}, WHITE_TEXT},
    {"blue", {0, 0, 255}, WHITE_TEXT},     {"violet", {148, 0, 211}, WHITE_TEXT},
    {"gray", {134, 136, 138}, BLACK_TEXT},
};

QString style_of(const Offered& offered)
{
    return QString("QComboBox { color: %1; background-color: %2; }")
        .arg(offered.text.name(), offered.color.name());
}

/** The station's box looks like this choice, and so does the identity on the panel. */
void verify_look(TestStation& station, const Offered& offered)
{
    QCOMPARE(station.color, offered.color);
    QCOMPARE(station.color_combobox.styleSheet(), style_of(offered));
    const QPalette palette = station.findChild<QLabel*>("laStationID")->palette();
    QCOMPARE(palette.color(QPalette::WindowText), offered.text);
    QCOMPARE(palette.color(QPalette::Window), offered.color);
}

QStringList item_texts(const QComboBox& box)
{
    QStringList texts;
    for (int i = 0; i < box.count(); ++i)
        texts.append(box.itemText(i));
    return texts;
}

/** A station in its second discharge. */
void begin_two_cycles(StationBench& bench)
{
    bench.start();
    for (int i = 0; i < 2; ++i) {
        bench.station->set_phase(PHASE_DISCHARGING, "the test says so");
        bench.receive("41.0", "9.8", "D");
    }
    QCOMPARE(bench.station->cycles.size(), 2);
}

QList<Qt::CheckState> ticks(const TestStation& station)
{
    QList<Qt::CheckState> states;
    for (const TestCycle* cycle : station.cycles)
        states.append(cycle->checkbox.checkState());
    return states;
}

/** Paints one item of the list as the delegate does, marked as chosen or not. */
QImage painted_item(const QAbstractItemDelegate& delegate, const QModelIndex& index,
                    QStyle::State state)
{
    QImage image(120, 24, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    QStyleOptionViewItem option;
    option.rect = image.rect();
    option.state = state;
    option.showDecorationSelected = true;
    option.palette.setColor(QPalette::Highlight, Qt::magenta);
    delegate.paint(&painter, option, index);
    return image;
}
}  // namespace

/** The station's row above the charts: its colour, its ticks. */
class SelectionTest : public QObject
{
    Q_OBJECT

private slots:
    void a_new_box_is_as_high_as_its_colours_make_it();
    void a_new_box_has_the_size_that_it_is_shown_with();
    void one_item_of_the_list_is_measured_for_all();
    void a_longer_identity_has_the_list_measured_anew();
    void init();
    void the_widgets_have_no_parent_before_the_window_places_them();
    void a_new_station_is_black();
    void nine_colours_are_offered_without_white();
    void each_item_bears_its_colours_data();
    void each_item_bears_its_colours();
    void a_choice_colours_box_panel_and_curves_data();
    void a_choice_colours_box_panel_and_curves();
    void a_choice_asks_for_a_repaint();
    void a_changed_identity_relabels_and_keeps_the_choice();
    void a_changed_identity_runs_through_every_choice_on_the_way();
    void a_box_without_a_choice_is_survived();
    void a_preview_has_its_own_name_on_the_items();

    void all_boxes_share_one_delegate();
    void an_item_keeps_its_colour_under_the_highlight_data();
    void an_item_keeps_its_colour_under_the_highlight();
    void the_delegate_leaves_the_caller_s_option_alone();

    void ticks_are_set_from_the_beginning();
    void the_box_of_all_cycles_clears_and_sets_them();
    void a_partial_box_sets_all();
    void all_ticks_without_a_cycle_ask_for_a_repaint_too();

    void the_label_follows_what_is_typed();
};

void SelectionTest::a_new_box_is_as_high_as_its_colours_make_it()
{
    StationBench bench;
    QComboBox plain;
    plain.addItem("S7");
    plain.setStyleSheet(bench.station->color_combobox.styleSheet());
    QCOMPARE(bench.station->color_combobox.minimumSizeHint().height(),
             plain.minimumSizeHint().height());
}

void SelectionTest::a_new_box_has_the_size_that_it_is_shown_with()
{
    StationBench bench;
    QComboBox& box = bench.station->color_combobox;
    QCOMPARE(box.size(), QSize(box.minimumWidth(), box.sizeHint().height()));
    const QSize before = box.size();
    box.show();
    QCOMPARE(box.size(), before);
}

void SelectionTest::one_item_of_the_list_is_measured_for_all()
{
    const StationBench bench;
    const auto* list = qobject_cast<QListView*>(bench.station->color_combobox.view());
    QVERIFY(list != nullptr);
    QVERIFY(list->uniformItemSizes());
    // Nothing is lost by it: each is as large as the one.
    for (int row = 1; row < 9; ++row)
        QCOMPARE(list->sizeHintForIndex(list->model()->index(row, 0)),
                 list->sizeHintForIndex(list->model()->index(0, 0)));
}

void SelectionTest::a_longer_identity_has_the_list_measured_anew()
{
    StationBench bench;
    bench.receive("41.0", "0.0", "O");
    QComboBox& box = bench.station->color_combobox;
    box.show();
    box.showPopup();
    QVERIFY(bench.wire.send("x\t41.0\t0.0\tx\tx\tID=1234567\tO", *bench.instrument));
    const QModelIndex last = box.model()->index(8, 0);
    QCOMPARE(box.itemText(8), QString("Station 1234567"));
    QVERIFY(box.view()->visualRect(last).width() >= box.view()->sizeHintForIndex(last).width());
}

void SelectionTest::init()
{
    TestStation::num_previews = 0;
}

void SelectionTest::the_widgets_have_no_parent_before_the_window_places_them()
{
    const StationBench bench;
    QVERIFY(bench.station->color_combobox.parentWidget() == nullptr);
    QVERIFY(bench.station->all_cycles_checkbox.parentWidget() == nullptr);
    QVERIFY(bench.station->serial_number_label.parentWidget() == nullptr);
}

void SelectionTest::a_new_station_is_black()
{
    const StationBench bench;
    QCOMPARE(bench.station->color_combobox.currentIndex(), 0);
    // The rounded corners of the set-up are gone with the first choice.
    verify_look(*bench.station, OFFERED[0]);
}

void SelectionTest::nine_colours_are_offered_without_white()
{
    const StationBench bench;
    QCOMPARE(bench.station->color_combobox.count(), 9);
    for (int i = 0; i < 9; ++i)
        QVERIFY(bench.station->color_combobox.itemData(i).value<QColor>() != Colors::white);
}

void SelectionTest::each_item_bears_its_colours_data()
{
    QTest::addColumn<int>("row");
    int row = 0;
    for (const Offered& offered : OFFERED)
        QTest::newRow(offered.name) << row++;
}

void SelectionTest::each_item_bears_its_colours()
{
    QFETCH(int, row);
    const Offered& offered = OFFERED[row];
    StationBench bench;
    bench.receive("41.0", "0.0", "O");
    const QComboBox& box = bench.station->color_combobox;
    QCOMPARE(box.itemText(row), QString("Station 7"));
    QCOMPARE(box.itemData(row, Qt::UserRole), QVariant(offered.color));
    QCOMPARE(box.itemData(row, Qt::BackgroundRole), QVariant(offered.color));
    QCOMPARE(box.itemData(row, Qt::ForegroundRole), QVariant(offered.text));
}

void SelectionTest::a_choice_colours_box_panel_and_curves_data()
{
    each_item_bears_its_colours_data();
}

void SelectionTest::a_choice_colours_box_panel_and_curves()
{
    QFETCH(int, row);
    StationBench bench;
    begin_two_cycles(bench);
    // Another one first, so that the choice of the first is one, too.
    bench.station->color_combobox.setCurrentIndex(row == 4 ? 3 : 4);
    bench.station->color_combobox.setCurrentIndex(row);
    verify_look(*bench.station, OFFERED[row]);
    for (const TestCycle* cycle : qAsConst(bench.station->cycles)) {
        QCOMPARE(cycle->voltage_vs_amphours.pen, QPen(OFFERED[row].color));
        QCOMPARE(cycle->current_vs_amphours.pen, QPen(OFFERED[row].color));
        QCOMPARE(cycle->internal_resistance.pen, QPen(OFFERED[row].color));
    }
}

void SelectionTest::a_choice_asks_for_a_repaint()
{
    StationBench bench;
    QSignalSpy requests(bench.station.get(), &TestStation::sig_repaint_chart_request);
    bench.station->color_combobox.setCurrentIndex(5);
    QCOMPARE(requests.count(), 1);
    bench.station->color_combobox.setCurrentIndex(5);
    QCOMPARE(requests.count(), 1);
}

void SelectionTest::a_changed_identity_relabels_and_keeps_the_choice()
{
    StationBench bench;
    bench.receive("41.0", "0.0", "O");
    bench.station->color_combobox.setCurrentIndex(5);
    QVERIFY(bench.wire.send("x\t41.0\t0.0\tx\tx\tID=31\tO", *bench.instrument));
    QStringList expected;
    for (int i = 0; i < 9; ++i)
        expected.append("Station 31");
    QCOMPARE(item_texts(bench.station->color_combobox), expected);
    QCOMPARE(bench.station->color_combobox.currentIndex(), 5);
    verify_look(*bench.station, OFFERED[5]);
    // The grid above the charts is not laid out anew for it.
    QSignalSpy rebuilds(bench.station.get(), &TestStation::sig_max_cycle_change);
    QVERIFY(bench.wire.send("x\t41.0\t0.0\tx\tx\tID=32\tO", *bench.instrument));
    QCOMPARE(rebuilds.count(), 0);
}

void SelectionTest::a_changed_identity_runs_through_every_choice_on_the_way()
{
    StationBench bench;
    begin_two_cycles(bench);
    QComboBox& box = bench.station->color_combobox;
    box.setCurrentIndex(8);
    QList<int> choices;
    connect(&box, qOverload<int>(&QComboBox::currentIndexChanged),
            [&choices](int index) { choices.append(index); });
    QSignalSpy requests(bench.station.get(), &TestStation::sig_repaint_chart_request);
    bench.station->repopulate_color_combobox();
    QCOMPARE(choices, (QList<int>{-1, 0, 8}));
    QCOMPARE(requests.count(), 3);
    verify_look(*bench.station, OFFERED[8]);
    for (const TestCycle* cycle : qAsConst(bench.station->cycles))
        QCOMPARE(cycle->voltage_vs_amphours.pen, QPen(Colors::gray));
}

void SelectionTest::a_box_without_a_choice_is_survived()
{
    StationBench bench;
    begin_two_cycles(bench);
    bench.station->color_combobox.setCurrentIndex(-1);
    bench.station->repopulate_color_combobox();
    QCOMPARE(bench.station->color_combobox.currentIndex(), -1);
    bench.station->color_combobox.setCurrentIndex(7);
    verify_look(*bench.station, OFFERED[7]);
}

void SelectionTest::a_preview_has_its_own_name_on_the_items()
{
    const QTemporaryDir folder;
    load_test_settings(folder.path());
    const TestStation preview(nullptr, nullptr);
    QCOMPARE(item_texts(preview.color_combobox).value(8), QString("Preview 1"));
    QCOMPARE(preview.color_combobox.currentIndex(), 0);
}

void SelectionTest::all_boxes_share_one_delegate()
{
    const StationBench bench;
    const TestStation preview(nullptr, nullptr);
    const QAbstractItemDelegate* shared = &TestStation::selection_killer_delegate;
    QCOMPARE(bench.station->color_combobox.itemDelegate(), shared);
    QCOMPARE(preview.color_combobox.itemDelegate(), shared);
}

void SelectionTest::an_item_keeps_its_colour_under_the_highlight_data()
{
    each_item_bears_its_colours_data();
}

void SelectionTest::an_item_keeps_its_colour_under_the_highlight()
{
    QFETCH(int, row);
    const StationBench bench;
    const QModelIndex index = bench.station->color_combobox.model()->index(row, 0);
    const SelectionKillerDelegate& delegate = TestStation::selection_killer_delegate;
    const QStyle::State enabled = QStyle::State_Enabled | QStyle::State_Active;
    const QImage chosen = painted_item(delegate, index, enabled | QStyle::State_Selected);
    QCOMPARE(chosen, painted_item(delegate, index, enabled));
    QCOMPARE(chosen.pixelColor(110, 2), OFFERED[row].color);
    // What the toolkit's own does, so that the comparison above means something.
    const QImage plain = painted_item(QItemDelegate(), index, enabled | QStyle::State_Selected);
    QCOMPARE(plain.pixelColor(110, 2), QColor(Qt::magenta));
}

void SelectionTest::the_delegate_leaves_the_caller_s_option_alone()
{
    const StationBench bench;
    QImage image(50, 20, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    QStyleOptionViewItem option;
    option.rect = image.rect();
    option.state = QStyle::State_Enabled | QStyle::State_Selected | QStyle::State_MouseOver;
    const QStyle::State before = option.state;
    TestStation::selection_killer_delegate.paint(
        &painter, option, bench.station->color_combobox.model()->index(0, 0));
    QCOMPARE(option.state, before);
}

void SelectionTest::ticks_are_set_from_the_beginning()
{
    StationBench bench;
    QVERIFY(bench.station->all_cycles_checkbox.isTristate());
    QCOMPARE(bench.station->all_cycles_checkbox.checkState(), Qt::Checked);
    begin_two_cycles(bench);
    QCOMPARE(ticks(*bench.station), (QList<Qt::CheckState>{Qt::Checked, Qt::Checked}));
    QVERIFY(!bench.station->cycles.first()->checkbox.isTristate());
}

void SelectionTest::the_box_of_all_cycles_clears_and_sets_them()
{
    StationBench bench;
    begin_two_cycles(bench);
    QSignalSpy requests(bench.station.get(), &TestStation::sig_repaint_chart_request);
    QCheckBox& all = bench.station->all_cycles_checkbox;
    all.show();
    QTest::mouseClick(&all, Qt::LeftButton, {}, QPoint(8, all.height() / 2));
    QCOMPARE(ticks(*bench.station), (QList<Qt::CheckState>{Qt::Unchecked, Qt::Unchecked}));
    QCOMPARE(requests.count(), 1);
    // For an instant it shows partial; nobody refreshes it here.
    QTest::mouseClick(&all, Qt::LeftButton, {}, QPoint(8, all.height() / 2));
    QCOMPARE(all.checkState(), Qt::PartiallyChecked);
    QCOMPARE(ticks(*bench.station), (QList<Qt::CheckState>{Qt::Checked, Qt::Checked}));
    QCOMPARE(requests.count(), 2);
}

void SelectionTest::a_partial_box_sets_all()
{
    StationBench bench;
    begin_two_cycles(bench);
    bench.station->cycles.first()->checkbox.setCheckState(Qt::Unchecked);
    QCheckBox& all = bench.station->all_cycles_checkbox;
    all.setCheckState(Qt::PartiallyChecked);
    all.click();
    QCOMPARE(all.checkState(), Qt::Checked);
    QCOMPARE(ticks(*bench.station), (QList<Qt::CheckState>{Qt::Checked, Qt::Checked}));
}

void SelectionTest::all_ticks_without_a_cycle_ask_for_a_repaint_too()
{
    StationBench bench;
    QSignalSpy requests(bench.station.get(), &TestStation::sig_repaint_chart_request);
    bench.station->all_cycles_checkbox.click();
    QCOMPARE(requests.count(), 1);
}

void SelectionTest::the_label_follows_what_is_typed()
{
    StationBench bench;
    bench.type("leSerialNumber", "1042");
    QCOMPARE(bench.station->serial_number_label.text(), QString("1042"));
    // What looks like markup is shown as it stands.
    QCOMPARE(bench.station->serial_number_label.textFormat(), Qt::PlainText);
}

KEST_TEST(SelectionTest)
#include "tst_selection.moc"
