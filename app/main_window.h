#pragma once

#include "charts/line_chart.h"

#include <QMainWindow>
#include <QTimer>

#include <memory>

struct ChartKind;
class PaintBox;
class PanelSight;
class TestStation;
class WidgetGrid;

namespace Ui
{
class MainWindow;
}

/** The one window: the stations' panels on the left, what they measure on the right. */
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    // ---- main_window.cpp: the frame, the menu and the timers ----------------
    /** Ends the process with status 1 when settings or profiles cannot be loaded. */
    explicit MainWindow(QWidget* parent);
    ~MainWindow() override;

signals:
    /** Once a second, false first and then alternating. */
    void sig_blink(bool on);

public slots:
    void slot_blink();

private slots:
    void on_actionSettings_triggered();

    // ---- main_window_dialogs.cpp: what the help menu opens ------------------
    void on_actionHelp_triggered();
    void on_actionAbout_triggered();
    void on_actionWidget_Font_Debug_Dialog_triggered();

    // ---- main_window_stations.cpp: adding, sorting and closing stations -----
public:
    /** Makes the left column exactly as wide as a panel, or half the window before one was seen. */
    void set_lhs_width();
    /** Text order of the identities: Preview 1, Station 1, Station 10, Station 2. */
    static bool sort_compare_test_stations(const TestStation* a, const TestStation* b);
    /** Connects a new station, whose parent is this window, and places its panel. */
    void add_station(TestStation* station);

public slots:
    void slot_id_change();
    void slot_close_request(TestStation* station);

private slots:
    void on_pbNewTestStation_clicked();
    void on_actionNew_Test_Station_triggered();

private:
    bool directories_set();
    void edit_settings();
    void adopt_panel_width();
    void make_room_for_scroll_bar();

    // ---- main_window_selection.cpp: the grid of ticks and colours above -----
public:
    void rebuild_cycle_checkbox_grid();
    void refresh_chart_station_list();

public slots:
    void slot_refresh_chart_cycle_list();

private:
    void place_stations(WidgetGrid& grid, int max_cycles);
    void place_grid_header(WidgetGrid& grid, int max_cycles);

    // ---- main_window_charts.cpp: what is plotted, and when ------------------
public:
    /** The ticked cycles' curves in the order of the stations, named "Station 31:2". */
    QList<Series*> get_series_list_to_plot(char chart_type);

public slots:
    void slot_refresh_charts();

private slots:
    void slot_paint_voltage_chart(QPainter* painter, QRect rect);
    void slot_paint_current_chart(QPainter* painter, QRect rect);
    void slot_paint_kest_logo(QPainter* painter, QRect rect);
    void on_cbSmoothVoltageChart_stateChanged(int state);
    void on_cbSmoothCurrentChart_stateChanged(int state);
    void on_cbBottomChart_currentTextChanged(const QString& text);

private:
    void set_up_chart_boxes();
    void set_up_chart_controls();
    void set_up_charts();
    void set_chart_refresh_interval();
    void reposition_controls_on_bottom_chart();
    /** Null while the choice of the lower chart is none of them. */
    const ChartKind* kind_shown_in(const PaintBox* box) const;
    void repaint_chart(QPainter* painter, QRect rect, char chart_type, LineChart* chart,
                       ZoomInterval* zoom, ChartStyle style, bool smooth);

    // ---- main_window_closest_point.cpp: the point nearest to the mouse ------
    void plot_closest_chart_point(const QList<Series*>& series, char chart_type, PaintBox* box,
                                  LineChart* chart, QPainter* painter);

    // ---- main_window_zoom.cpp: the rectangle that a chart shows -------------
private slots:
    void slot_rubberband(QRect rect);
    void on_pbCancelVoltageZoom_clicked();
    void on_pbCancelCurrentZoom_clicked();

private:
    void cancel_bottom_zoom();

    // ---- shared data --------------------------------------------------------
    Ui::MainWindow* ui;                     ///< owned
    PaintBox* voltage_chart_box = nullptr;  ///< upper chart
    PaintBox* bottom_chart_box = nullptr;   ///< lower chart
    PaintBox* header_box = nullptr;         ///< strip above the charts
    PanelSight* panel_sight = nullptr;      ///< the scroll area's
    QTimer chart_refresh_timer;
    QTimer blink_timer;
    std::unique_ptr<ZoomInterval> voltage_zoom;  ///< null while the upper chart shows everything
    std::unique_ptr<ZoomInterval> bottom_zoom;   ///< of both lower charts, likewise
    int grid_width = 0;                          ///< pixels that the selection grid takes
};

/** Writes each curve's name at its last point, in a white box. */
void plot_series_captions(QPainter* painter, const QList<Series*>& series);
