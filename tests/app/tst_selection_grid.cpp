#include "app/main_window.h"

#include "chart_window.h"
#include "charts/paint_box.h"
#include "device/kestrometer.h"
#include "station/panel/combobox_items.h"
#include "station/test_station.h"
#include "support/profile_file.h"
#include "support/test_program.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

#include <algorithm>

namespace
{
constexpr int LOGO_HEIGHT = 67;

int gap()
{
    return QLabel(" ").minimumSizeHint().width();
}

/** The grid's labels of the header row that are shown, from left to right. */
QList<QLabel*> header_labels(const PaintBox* header)
{
    QList<QLabel*> labels;
    for (QLabel* label : header->findChildren<QLabel*>())
        if (label->isVisible() && label->y() < label->height())
            labels.append(label);
    std::sort(labels.begin(), labels.end(),
              [](const QLabel* a, const QLabel* b) { return a->x() < b->x(); });
    return labels;
}

QStringList header_texts(const PaintBox* header)
{
    QStringList texts;
    for (const QLabel* label : header_labels(header))
        texts.append(label->text());
    return texts;
}

QLabel* header_label(const PaintBox* header, const QString& text)
{
    for (QLabel* label : header_labels(header))
        if (label->text() == text)
            return label;
    return nullptr;
}

int centre(const QWidget& widget)
{
    return widget.x() + widget.width() / 2;
}

/** Equal but for the rest that a division cuts off. */
bool is_centred(const QWidget& widget, const QWidget& other)
{
    return std::abs(centre(widget) - centre(other)) <= 1;
}
}  // namespace

/** The table of colours and ticks above the charts. */
class SelectionGridTest : public QObject
{
    Q_OBJECT

private slots:
    void without_stations_only_the_header_stands();
    void a_station_without_cycles_has_three_widgets();
    void the_columns_are_aligned();
    void the_colour_box_keeps_its_width();
    void rows_follow_the_order_of_the_stations();
    void shorter_rows_leave_cells_empty();
    void the_header_numbers_the_cycles();
    void number_labels_are_taken_away_and_reused();
    void a_serial_number_has_its_room_wherever_it_comes_from();
    void a_closed_station_takes_its_row_along();
    void a_closed_station_takes_its_curves_along();
    void the_header_is_at_least_as_high_as_the_logo();
    void every_rebuild_gives_the_same_layout();
    void an_identity_change_moves_no_row_before_the_next_rebuild();
    void both_names_of_the_rebuild_do_it();
    void many_rebuilds_leave_a_tick_working();
    void a_refresh_paints_a_tick_only_if_it_changes();
    void a_second_window_takes_the_labels_over();
};

void SelectionGridTest::without_stations_only_the_header_stands()
{
    const ChartWindow bench;
    QCOMPARE(header_texts(bench.header), (QStringList{"All", "Serial Number"}));
    const QLabel* all = header_label(bench.header, "All");
    const QLabel* serial = header_label(bench.header, "Serial Number");
    // The colours' column is but a gap wide; what is centred has half a gap to its left.
    QCOMPARE(all->x(), gap() + gap() / 2);
    QCOMPARE(serial->x(), gap() + all->width() + gap());
    QCOMPARE(all->y(), gap() / 2);
    QCOMPARE(bench.header->minimumHeight(), 67);
    QCOMPARE(bench.header->maximumHeight(), 67);
}

void SelectionGridTest::a_station_without_cycles_has_three_widgets()
{
    ChartWindow bench;
    TestStation* station = bench.add_station(4);
    bench.settle();
    QCOMPARE(station->cycles.size(), 0);
    for (const QWidget* widget :
         QList<const QWidget*>{&station->color_combobox, &station->all_cycles_checkbox,
                               &station->serial_number_label}) {
        QCOMPARE(widget->parentWidget(), bench.header);
        QVERIFY(widget->isVisible());
        QVERIFY(widget->y() > header_label(bench.header, "All")->geometry().bottom());
    }
    QCOMPARE(header_texts(bench.header), (QStringList{"All", "Serial Number"}));
    QCOMPARE(station->serial_number_label.x(), header_label(bench.header, "Serial Number")->x());
}

void SelectionGridTest::the_columns_are_aligned()
{
    ChartWindow bench;
    TestStation* station = bench.add_station(4);
    for (int i = 0; i < 12; ++i)
        bench.add_cycle(station, CURVE);
    QCOMPARE(station->color_combobox.x(), 0);
    QVERIFY(is_centred(station->all_cycles_checkbox, *header_label(bench.header, "All")));
    int x = station->color_combobox.width() + gap();
    x += header_label(bench.header, "All")->width() + gap();
    for (int i = 0; i < 12; ++i) {
        const QCheckBox& tick = station->cycles.at(i)->checkbox;
        const QLabel* number = header_label(bench.header, QString::number(i + 1));
        const int room =
            qMax(tick.minimumSizeHint().width(), number->minimumSizeHint().width()) + gap();
        QCOMPARE(tick.x(), x + (room - tick.width()) / 2);
        QCOMPARE(number->x(), x + (room - number->width()) / 2);
        x += room;
    }
    QCOMPARE(station->serial_number_label.x(), x);
    QCOMPARE(header_label(bench.header, "Serial Number")->x(), x);
}

void SelectionGridTest::the_colour_box_keeps_its_width()
{
    ChartWindow bench;
    TestStation* station = bench.add_station(4);
    const QComboBox& box = station->color_combobox;
    QCOMPARE(box.minimumWidth(), box.maximumWidth());
    QCOMPARE(box.width(), box.minimumWidth());
    // No higher than it asks to be, though nobody pins its height.
    QVERIFY(box.maximumHeight() > 1000);
    QVERIFY(box.height() <= box.sizeHint().height());
    QVERIFY(station->all_cycles_checkbox.x() > box.geometry().right());
}

void SelectionGridTest::rows_follow_the_order_of_the_stations()
{
    ChartWindow bench;
    TestStation* second = bench.add_station(2);
    TestStation* tenth = bench.add_station(10);
    TestStation* first = bench.add_station(1);
    QVERIFY(first->color_combobox.y() > 0);
    QVERIFY(tenth->color_combobox.y() > first->color_combobox.geometry().bottom());
    QVERIFY(second->color_combobox.y() > tenth->color_combobox.geometry().bottom());
    for (const TestStation* station : {first, second, tenth}) {
        const int middle =
            station->color_combobox.y() + station->color_combobox.minimumSizeHint().height() / 2;
        for (const QWidget* widget :
             QList<const QWidget*>{&station->all_cycles_checkbox, &station->serial_number_label})
            QVERIFY(std::abs(widget->geometry().center().y() - middle) <= 1);
    }
}

void SelectionGridTest::shorter_rows_leave_cells_empty()
{
    ChartWindow bench;
    TestStation* longer = bench.add_station(1);
    TestStation* shorter = bench.add_station(2);
    for (int i = 0; i < 3; ++i)
        bench.add_cycle(longer, CURVE);
    bench.add_cycle(shorter, CURVE);
    QCOMPARE(header_texts(bench.header), (QStringList{"All", "1", "2", "3", "Serial Number"}));
    QCOMPARE(shorter->cycles.first()->checkbox.x(), longer->cycles.first()->checkbox.x());
    QCOMPARE(shorter->serial_number_label.x(), longer->serial_number_label.x());
    QVERIFY(shorter->serial_number_label.x() > longer->cycles.last()->checkbox.geometry().right());
}

void SelectionGridTest::the_header_numbers_the_cycles()
{
    ChartWindow bench;
    TestStation* station = bench.add_station(1);
    QStringList expected{"All"};
    for (int i = 1; i <= 11; ++i) {
        bench.add_cycle(station, CURVE);
        expected.append(QString::number(i));
        QCOMPARE(header_texts(bench.header), expected + QStringList{"Serial Number"});
    }
}

void SelectionGridTest::number_labels_are_taken_away_and_reused()
{
    ChartWindow bench;
    TestStation* staying = bench.add_station(1);
    TestStation* closing = bench.add_station(2);
    bench.add_cycle(staying, CURVE);
    for (int i = 0; i < 3; ++i)
        bench.add_cycle(closing, CURVE);
    QPointer<QLabel> third = header_label(bench.header, "3");
    QPointer<QLabel> first = header_label(bench.header, "1");
    bench.answers.click(QMessageBox::Ok);
    bench.window->slot_close_request(closing);
    QCOMPARE(header_texts(bench.header), (QStringList{"All", "1", "Serial Number"}));
    QVERIFY(!third.isNull() && !third->isVisible());
    QVERIFY(third->parentWidget() == nullptr);
    for (int i = 0; i < 2; ++i)
        bench.add_cycle(staying, CURVE);
    QCOMPARE(header_label(bench.header, "3"), third.data());
    QCOMPARE(header_label(bench.header, "1"), first.data());
}

void SelectionGridTest::a_serial_number_has_its_room_wherever_it_comes_from()
{
    ChartWindow bench;
    load_test_profiles("[Pack A]\nserial_number_template=A-0042\n"
                       "[pack b]\nserial_number_template=b-0000042\n");
    TestStation* station = bench.add_station(4);
    const QLabel& label = station->serial_number_label;
    const auto has_its_room = [&label] {
        return label.width() == label.minimumSizeHint().width();
    };
    QVERIFY(has_its_room());

    station->unload_test_data();
    auto* profiles = station->findChild<QComboBox*>("cbProfile");
    set_combobox_items(profiles, {TestStation::no_profile_text, "Pack A", "pack b"});
    for (const char* profile : {"Pack A", "pack b"}) {
        profiles->setCurrentText(profile);
        QVERIFY(!label.text().isEmpty());
        QVERIFY(has_its_room());
    }
    QTest::keyClicks(station->findChild<QLineEdit*>("leSerialNumber"), "777");
    QCOMPARE(label.text(), QString("b-0000042777"));
    QVERIFY(has_its_room());
    QTest::mouseClick(station->findChild<QPushButton*>("pbNewTest"), Qt::LeftButton);
    QCOMPARE(label.text(), QString("b-0000042"));
    QVERIFY(has_its_room());
}

void SelectionGridTest::a_closed_station_takes_its_row_along()
{
    ChartWindow bench;
    TestStation* first = bench.add_station(1);
    TestStation* second = bench.add_station(2);
    bench.add_cycle(first, CURVE);
    const int y = first->all_cycles_checkbox.y();
    QVERIFY(second->all_cycles_checkbox.y() > y);
    bench.answers.click(QMessageBox::Ok);
    bench.window->slot_close_request(first);
    QCOMPARE(second->all_cycles_checkbox.y(), y);
    QCOMPARE(bench.header->findChildren<QCheckBox*>().size(), 1);
    QCOMPARE(bench.header->findChildren<QComboBox*>(QString(), Qt::FindDirectChildrenOnly).size(),
             1);
}

void SelectionGridTest::a_closed_station_takes_its_curves_along()
{
    ChartWindow bench;
    TestStation* station = bench.add_station(1);
    bench.add_cycle(station, CURVE);
    bench.settle();
    const PaintCounter upper(bench.upper);
    const PaintCounter lower(bench.lower);
    bench.answers.click(QMessageBox::Ok);
    bench.window->slot_close_request(station);
    bench.settle();
    // At once, and not only at the next tick; the charts have kept their size.
    QCOMPARE(upper.count, 1);
    QCOMPARE(lower.count, 1);
}

void SelectionGridTest::the_header_is_at_least_as_high_as_the_logo()
{
    ChartWindow bench;
    int height = header_label(bench.header, "All")->minimumSizeHint().height() + gap();
    for (int i = 1; i <= 6; ++i) {
        const TestStation* station = bench.add_station(i);
        height += station->color_combobox.minimumSizeHint().height() + gap();
        QCOMPARE(bench.header->minimumHeight(), qMax(height, LOGO_HEIGHT));
        QCOMPARE(bench.header->maximumHeight(), qMax(height, LOGO_HEIGHT));
    }
    QVERIFY(height > LOGO_HEIGHT);
}

void SelectionGridTest::every_rebuild_gives_the_same_layout()
{
    ChartWindow bench;
    bench.window->add_station(new TestStation(bench.window.get(), nullptr));
    const auto layout = [&bench] {
        QList<QRect> places;
        for (const QWidget* widget :
             bench.header->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
            places.append(widget->geometry());
        std::sort(places.begin(), places.end(), [](const QRect& a, const QRect& b) {
            return std::make_pair(a.y(), a.x()) < std::make_pair(b.y(), b.x());
        });
        return places;
    };
    const QList<QRect> before = layout();
    for (int i = 0; i < 3; ++i)
        bench.window->rebuild_cycle_checkbox_grid();
    QCOMPARE(layout(), before);
}

void SelectionGridTest::an_identity_change_moves_no_row_before_the_next_rebuild()
{
    ChartWindow bench;
    TestStation* third = bench.add_station(3);
    TestStation* fifth = bench.add_station(5);
    third->kestrometer->id = 8;
    third->slot_id_change();
    QCOMPARE(TestStation::all_instances, (QList<TestStation*>{fifth, third}));
    QCOMPARE(third->color_combobox.itemText(0), QString("Station 8"));
    QVERIFY(third->color_combobox.y() < fifth->color_combobox.y());
    bench.window->rebuild_cycle_checkbox_grid();
    QVERIFY(third->color_combobox.y() > fifth->color_combobox.y());
}

void SelectionGridTest::both_names_of_the_rebuild_do_it()
{
    ChartWindow bench;
    TestStation* station = bench.add_station(1);
    const QPoint place = station->all_cycles_checkbox.pos();
    station->all_cycles_checkbox.move(0, 0);
    bench.window->refresh_chart_station_list();
    QCOMPARE(station->all_cycles_checkbox.pos(), place);
    station->all_cycles_checkbox.move(0, 0);
    bench.window->slot_refresh_chart_cycle_list();
    QCOMPARE(station->all_cycles_checkbox.pos(), place);
}

void SelectionGridTest::many_rebuilds_leave_a_tick_working()
{
    ChartWindow bench;
    TestStation* station = bench.add_station(1);
    TestCycle* cycle = bench.add_cycle(station, CURVE);
    for (int i = 0; i < 20; ++i)
        bench.window->rebuild_cycle_checkbox_grid();
    for (const Qt::CheckState expected : {Qt::Unchecked, Qt::Checked}) {
        QTest::mouseClick(&cycle->checkbox, Qt::LeftButton, {},
                          QPoint(8, cycle->checkbox.height() / 2));
        QCOMPARE(cycle->checkbox.checkState(), expected);
        QCOMPARE(station->all_cycles_checkbox.checkState(), expected);
    }
}

void SelectionGridTest::a_refresh_paints_a_tick_only_if_it_changes()
{
    struct Counter : QObject
    {
        bool eventFilter(QObject*, QEvent* event) override
        {
            paints += event->type() == QEvent::Paint ? 1 : 0;
            return false;
        }
        int paints = 0;
    } counter;
    ChartWindow bench;
    TestStation* station = bench.add_station(1);
    TestCycle* cycle = bench.add_cycle(station, CURVE);
    // Wide enough for panel and ticks in any font: what is not seen is not painted.
    bench.window->resize(3000, 1000);
    bench.window->slot_refresh_charts();
    bench.settle();
    station->all_cycles_checkbox.installEventFilter(&counter);
    bench.window->slot_refresh_charts();
    bench.settle();
    QCOMPARE(counter.paints, 0);
    cycle->checkbox.setChecked(false);
    bench.window->slot_refresh_charts();
    bench.settle();
    QVERIFY(counter.paints > 0);
    QCOMPARE(station->all_cycles_checkbox.checkState(), Qt::Unchecked);
}

void SelectionGridTest::a_second_window_takes_the_labels_over()
{
    for (int i = 0; i < 2; ++i) {
        ChartWindow bench;
        bench.add_cycle(bench.add_station(1), CURVE);
        QCOMPARE(header_texts(bench.header), (QStringList{"All", "1", "Serial Number"}));
    }
}

KEST_TEST(SelectionGridTest)
#include "tst_selection_grid.moc"
