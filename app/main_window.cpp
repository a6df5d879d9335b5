#include "app/main_window.h"

#include "ui_main_window.h"

#include "app/panel_sight.h"
#include "charts/paint_box.h"
#include "common/build_info.h"
#include "common/wheel_focus.h"
#include "config/battery_profiles.h"
#include "config/help_ids.h"
#include "config/settings.h"
#include "config/tool_tips.h"
#include "dialogs/edit_settings_dialog.h"
#include "station/test_station.h"

#include <QScrollBar>

#include <cstdlib>

namespace
{
constexpr int BLINK_INTERVAL_MS = 1000;

/** Not deleted, as the process is ending: labels that live as long as the process lie on them. */
void retire(QWidget* box)
{
    static auto& retired = *new QList<QWidget*>;
    box->setParent(nullptr);
    retired.append(box);
}
}  // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent), ui(new Ui::MainWindow), chart_refresh_timer(this), blink_timer(this)
{
    if (!Settings::load() || !BatteryProfiles::load())
        std::exit(1);
    ToolTips::load(":/help.html");
    ui->setupUi(this);
    leave_wheel_without_focus(this);
    panel_sight = new PanelSight(ui->scrollArea);
    // Queued: the bar itself shows or hides after its range has changed.
    connect(ui->scrollArea->verticalScrollBar(), &QScrollBar::rangeChanged, this,
            &MainWindow::make_room_for_scroll_bar, Qt::QueuedConnection);
    ToolTips::assign(ui->pbNewTestStation, HELP_ADD_STATION);
    set_up_chart_boxes();
    set_up_chart_controls();
    set_up_charts();
    connect(&blink_timer, &QTimer::timeout, this, &MainWindow::slot_blink);
    blink_timer.setInterval(BLINK_INTERVAL_MS);
    blink_timer.start();
    setWindowTitle(QString("Kestrometer Suite (build: %1) (mode: %2)")
                       .arg(BuildInfo::version, Settings::get_installation_type_string()));
    setWindowState(Qt::WindowMaximized);
    rebuild_cycle_checkbox_grid();
    set_lhs_width();
}

MainWindow::~MainWindow()
{
    retire(bottom_chart_box);
    retire(header_box);
    // Before the window's widgets go: each station commands its instrument off and closes its logs.
    const QList<TestStation*> stations = TestStation::all_instances;
    qDeleteAll(stations);
    delete ui;
}

void MainWindow::slot_blink()
{
    // Shared by all windows of the process; the first tick tells the stations false.
    static bool on = true;
    on = !on;
    emit sig_blink(on);
    adopt_panel_width();
}

void MainWindow::on_actionSettings_triggered()
{
    edit_settings();
}
