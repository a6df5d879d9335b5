#include "app/main_window.h"

#include "charts/paint_box.h"
#include "common/widget_grid.h"
#include "station/test_station.h"

#include <QLabel>
#include <QMap>

namespace
{
constexpr int LOGO_HEIGHT = 67;

// Columns of the grid: the colour, all cycles, one for each cycle, the serial number.
constexpr int COLOR_COLUMN = 0;
constexpr int ALL_COLUMN = 1;
constexpr int FIRST_CYCLE_COLUMN = 2;

/** Labels of the cycles' numbers; made on demand, reused, and alive until the process ends. */
QMap<int, QLabel*>& number_labels()
{
    static auto& labels = *new QMap<int, QLabel*>;
    return labels;
}

QLabel* number_label(int number)
{
    QLabel*& label = number_labels()[number];
    if (label == nullptr)
        label = new QLabel(QString::number(number));
    return label;
}

/** Those that the grid has a place for stay in it: each one put back would cost a walk over all. */
void detach_numbers_above(int number)
{
    QMap<int, QLabel*>& labels = number_labels();
    for (auto label = labels.upperBound(number); label != labels.end(); ++label)
        (*label)->setParent(nullptr);
}

int most_cycles()
{
    int most = 0;
    for (const TestStation* station : qAsConst(TestStation::all_instances))
        most = qMax(most, station->get_cycle_number());
    return most;
}
}  // namespace

void MainWindow::rebuild_cycle_checkbox_grid()
{
    const int max_cycles = most_cycles();
    detach_numbers_above(max_cycles);
    WidgetGrid grid;
    grid.set_size(TestStation::all_instances.size() + 1, max_cycles + 3);
    place_stations(grid, max_cycles);
    grid.set_col_alignment(COLOR_COLUMN, Qt::AlignJustify);
    for (int column = ALL_COLUMN; column < max_cycles + FIRST_CYCLE_COLUMN; ++column)
        grid.set_col_alignment(column, Qt::AlignHCenter);
    grid.set_col_alignment(max_cycles + FIRST_CYCLE_COLUMN, Qt::AlignLeft);
    place_grid_header(grid, max_cycles);

    int height = 0;
    grid_width = 0;
    grid.place_widgets(header_box, grid_width, height);
    header_box->setFixedHeight(qMax(height, LOGO_HEIGHT));
    // The logo beside the grid comes and goes with the room that is left.
    header_box->update();
}

void MainWindow::place_stations(WidgetGrid& grid, int max_cycles)
{
    int row = 1;
    for (TestStation* station : qAsConst(TestStation::all_instances)) {
        grid.set_widget(row, COLOR_COLUMN, &station->color_combobox);
        grid.set_widget(row, ALL_COLUMN, &station->all_cycles_checkbox);
        int column = FIRST_CYCLE_COLUMN;
        for (TestCycle* cycle : qAsConst(station->cycles)) {
            cycle->checkbox.setAccessibleName(QString("Cycle %1").arg(column - ALL_COLUMN));
            grid.set_widget(row, column++, &cycle->checkbox);
            // Made again at each rebuild: that a click then refreshes more than once does no harm.
            connect(&cycle->checkbox, &QAbstractButton::clicked, this,
                    &MainWindow::slot_refresh_charts);
        }
        grid.set_widget(row, max_cycles + FIRST_CYCLE_COLUMN, &station->serial_number_label);
        ++row;
    }
}

void MainWindow::place_grid_header(WidgetGrid& grid, int max_cycles)
{
    static auto* const all = new QLabel("All");
    static auto* const serial_number = new QLabel("Serial Number");
    grid.set_widget(0, ALL_COLUMN, all);
    grid.set_widget(0, max_cycles + FIRST_CYCLE_COLUMN, serial_number);
    for (int number = 1; number <= max_cycles; ++number)
        grid.set_widget(0, number + ALL_COLUMN, number_label(number));
}

void MainWindow::refresh_chart_station_list()
{
    rebuild_cycle_checkbox_grid();
}

void MainWindow::slot_refresh_chart_cycle_list()
{
    // A log's cycles come one after the other: laid out at the word that follows the last.
    const auto* station = qobject_cast<TestStation*>(sender());
    if (station == nullptr || !station->reads_log)
        rebuild_cycle_checkbox_grid();
}
