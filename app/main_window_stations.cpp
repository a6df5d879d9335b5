#include "app/main_window.h"

#include "ui_main_window.h"

#include "app/panel_sight.h"
#include "config/settings.h"
#include "dialogs/add_test_station_dialog.h"
#include "dialogs/edit_settings_dialog.h"
#include "station/test_station.h"

#include <QMessageBox>

#include <algorithm>

namespace
{
struct NeededDirectory
{
    QString (*get)();
    const char* title;
    const char* text;
};

const NeededDirectory NEEDED_DIRECTORIES[] = {
    {Settings::get_log_dir, "Log directory not set",
     "Before a test station can be created, a log directory must be chosen.\n"
     "The settings dialog will now be opened."},
    {Settings::get_pdf_dir, "PDF directory not set",
     "Before a test station can be created, a PDF directory must be chosen.\n"
     "The settings dialog will now be opened."},
};

bool unset(const QString& directory)
{
    return directory.isEmpty() || directory == ".";
}

bool accepted(const QString& title, const QString& text, QMessageBox::StandardButton preselected)
{
    return QMessageBox::question(nullptr, title, text, QMessageBox::Ok | QMessageBox::Cancel,
                                 preselected) == QMessageBox::Ok;
}
}  // namespace

void MainWindow::on_pbNewTestStation_clicked()
{
    on_actionNew_Test_Station_triggered();
}

void MainWindow::on_actionNew_Test_Station_triggered()
{
    if (!directories_set())
        return;
    AddTestStationDialog dialog(this);
    if (dialog.exec() == QDialog::Accepted)
        add_station(new TestStation(this, dialog.kestrometer));
}

/** Asks for the settings until both directories are chosen; false if the operator gives up. */
bool MainWindow::directories_set()
{
    for (const NeededDirectory& needed : NEEDED_DIRECTORIES) {
        while (unset(needed.get())) {
            if (!accepted(needed.title, needed.text, QMessageBox::Ok))
                return false;
            edit_settings();
        }
    }
    return true;
}

void MainWindow::edit_settings()
{
    EditSettingsDialog dialog(this);
    dialog.exec();
    set_chart_refresh_interval();
}

void MainWindow::add_station(TestStation* station)
{
    connect(station, &TestStation::sig_id_change, this, &MainWindow::slot_id_change);
    connect(station, &TestStation::sig_max_cycle_change, this,
            &MainWindow::slot_refresh_chart_cycle_list);
    connect(station, &TestStation::sig_close_request, this, &MainWindow::slot_close_request);
    connect(station, &TestStation::sig_repaint_chart_request, this,
            &MainWindow::slot_refresh_charts);
    connect(this, &MainWindow::sig_blink, station, &TestStation::slot_blink);
    panel_sight->watch(station);
    slot_id_change();
    rebuild_cycle_checkbox_grid();
}

void MainWindow::slot_id_change()
{
    QList<TestStation*>& stations = TestStation::all_instances;
    for (TestStation* station : stations)
        ui->verticalLayout->removeWidget(station);
    std::sort(stations.begin(), stations.end(), sort_compare_test_stations);
    for (int i = 0; i < stations.size(); ++i)
        ui->verticalLayout->insertWidget(i, stations.at(i), 0, Qt::Alignment());
}

bool MainWindow::sort_compare_test_stations(const TestStation* a, const TestStation* b)
{
    return a->get_id() < b->get_id();
}

void MainWindow::slot_close_request(TestStation* station)
{
    if (station->phase != PHASE_IDLE && station->phase != PHASE_DONE &&
        !accepted("Are you sure?", "This will abort the test in progress.", QMessageBox::Cancel))
        return;
    ui->verticalLayout->removeWidget(station);
    disconnect(this, &MainWindow::sig_blink, station, &TestStation::slot_blink);
    delete station;
    rebuild_cycle_checkbox_grid();
    slot_refresh_charts();
}

void MainWindow::adopt_panel_width()
{
    // Only now has the window got its real size.
    static bool first_tick = true;
    if (first_tick)
        set_lhs_width();
    first_tick = false;

    int widest = 0;
    for (const TestStation* station : TestStation::all_instances)
        widest = std::max(widest, station->width());
    if (widest == 0 || widest == Settings::get_test_station_width_px())
        return;
    Settings::set_test_station_width_px(widest);
    Settings::save();
    set_lhs_width();
}

/** A scroll bar that comes would lie on the panels' close buttons until the next start. */
void MainWindow::make_room_for_scroll_bar()
{
    if (Settings::get_test_station_width_px() > 0)
        set_lhs_width();
}

void MainWindow::set_lhs_width()
{
    const int measured = Settings::get_test_station_width_px();
    // The file may have been edited by hand: what no widget can have counts as not measured.
    const bool possible = measured > 0 && measured <= QWIDGETSIZE_MAX;
    const int panel = possible ? measured : width() / 2;
    ui->frNewStation->setFixedWidth(panel);
    // The viewport comes to exactly the panel's width, whatever scroll bar and frame take.
    ui->fr_left->setFixedWidth(ui->fr_left->width() - ui->scrollArea->viewport()->width() + panel);
}
