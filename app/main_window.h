#pragma once

#include <QMainWindow>
#include <QTimer>

class TestStation;

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
    /** Ends the process with status 1 when the settings cannot be loaded; the loader has told why. */
    explicit MainWindow(QWidget* parent);
    ~MainWindow() override;

signals:
    /** Once a second, false first and then alternating. */
    void sig_blink(bool on);

public slots:
    void slot_blink();

private slots:
    void on_actionSettings_triggered();

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

    Ui::MainWindow* ui;  ///< owned
    QTimer chart_refresh_timer;
    QTimer blink_timer;
};
