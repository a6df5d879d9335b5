#include "station/test_station.h"

#include "ui_test_station.h"

#include "common/colors.h"
#include "common/widget_colors.h"
#include "station/cycle_charts.h"

#include <QAbstractItemModel>
#include <QListView>

namespace
{
constexpr int OFFERED_COLORS = 9;  // white, the last of the code, is left out: the charts are white

QColor readable_on(const QColor& background)
{
    return grayscale_value(background) < 127 ? Colors::white : Colors::black;
}
}  // namespace

void TestStation::set_up_all_cycles_checkbox()
{
    all_cycles_checkbox.setTristate(true);
    all_cycles_checkbox.setCheckState(Qt::Checked);
    all_cycles_checkbox.setAccessibleName("All");
    connect(&all_cycles_checkbox, &QCheckBox::clicked, this,
            &TestStation::slot_all_cycles_checkbox_clicked);
}

// The order is meant: the box ends its filling without a choice, so that the first one is a change
// and gives the new station its colour.
void TestStation::set_up_color_combobox()
{
    // Its width is pinned: its ten items need not be measured each time that its style changes.
    color_combobox.setMinimumContentsLength(1);
    repopulate_color_combobox();
    color_combobox.setAccessibleName("Color");
    color_combobox.setItemDelegate(&selection_killer_delegate);
    // All items bear the same text: one is measured, and not all nine whenever the box gets a sheet
    // or a parent.
    static_cast<QListView*>(color_combobox.view())->setUniformItemSizes(true);
    color_combobox.setStyleSheet("QComboBox { border-radius: 1px; }");
    connect(&color_combobox, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &TestStation::slot_color_change);
    color_combobox.setCurrentIndex(0);
    // Only now, as each sheet of a polished box is worked out for all parts of its list as well; but
    // before anybody asks for its size, which would be that of the first sheet.
    color_combobox.ensurePolished();
}

void TestStation::slot_all_cycles_checkbox_clicked()
{
    const bool checked = all_cycles_checkbox.checkState() != Qt::Unchecked;
    for (TestCycle* cycle : qAsConst(cycles))
        cycle->checkbox.setCheckState(checked ? Qt::Checked : Qt::Unchecked);
    emit sig_repaint_chart_request();
}

void TestStation::repopulate_color_combobox()
{
    const int chosen = color_combobox.currentIndex();
    color_combobox.clear();
    QAbstractItemModel* model = color_combobox.model();
    for (int row = 0; row < OFFERED_COLORS; ++row) {
        const QColor& offered = Colors::resistor_color_code[row];
        color_combobox.addItem(get_id(), offered);
        model->setData(model->index(row, 0), offered, Qt::BackgroundRole);
        model->setData(model->index(row, 0), readable_on(offered), Qt::ForegroundRole);
    }
    color_combobox.setCurrentIndex(chosen);
}

void TestStation::slot_color_change(int index)
{
    // While the box is filled anew it has no choice for a moment; the right one follows at once.
    color = Colors::resistor_color_code[qMax(index, 0)];
    set_widget_colors(&color_combobox, readable_on(color), color);
    set_widget_colors(ui->laStationID, readable_on(color), color);
    for (TestCycle* cycle : qAsConst(cycles))
        set_curve_color(*cycle, color);
    emit sig_repaint_chart_request();
}
