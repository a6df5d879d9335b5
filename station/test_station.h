#pragma once

#include "charts/line_chart.h"
#include "station/panel/readouts.h"
#include "station/panel/selection_killer_delegate.h"
#include "station/phase.h"
#include "station/test_cycle.h"
#include "station/test_parameters.h"

#include <QCheckBox>
#include <QColor>
#include <QComboBox>
#include <QDateTime>
#include <QFrame>
#include <QLabel>
#include <QList>

#include <memory>

class Kestrometer;
class QFile;
class LogSink;
class QTextStream;

namespace Ui
{
class TestStation;
}

/** One battery under test: its instrument, its phases, its logs and its panel. */
class TestStation : public QFrame
{
    Q_OBJECT

public:
    // ---- test_station.cpp: life and identity ------------------------------
    /** Takes `instrument` over; null makes a preview station, which only shows logs. */
    TestStation(QWidget* parent, Kestrometer* instrument);
    ~TestStation() override;

    /** "Station 31" by the instrument's number, or "Preview 1". */
    QString get_id() const;
    /** "S31" or "P1". */
    QString get_short_id() const;
    /** The instrument's port, or "Preview Only". */
    QString get_port_name() const;

    TestParameters parameters() const;
    /** What is given replaces the station's; populate_ui shows it. */
    void take(const TestParameters& given);

    static QList<TestStation*> all_instances;  ///< every station, oldest first until sorted
    static int num_previews;                   ///< preview stations made so far
    static const QString no_profile_text;      ///< first entry of every `cbProfile`: none selected
    static LineChart voltage_vs_amphours_chart;
    static LineChart current_vs_amphours_chart;
    static LineChart internal_resistance_chart;
    static SelectionKillerDelegate selection_killer_delegate;  ///< of all colour boxes

    // ---- engine/progress.cpp: how far the test has come -------------------
    /** Place of the current cycle counted from 1; 0 before the first discharge. */
    int get_cycle_number() const;
    Phase get_phase() const;
    /** A charge, and behind the last discharge that is wanted the final one. */
    Phase phase_after_discharge() const;
    /** While a charge leg runs; a charge test does not count. */
    bool charging() const;
    QString phase_to_string(Phase which) const;
    /** Mean over every resistance point of every cycle, as "123 mΩ"; "? mΩ" when there is none. */
    QString get_avg_internal_resistance_string() const;

    // ---- engine/phases.cpp: one telemetry line, one change of phase -------
    /** Logs the reason, begins the leg or cycle, and commands the instrument. */
    void set_phase(Phase new_phase, const QString& reason);

    // ---- engine/charge.cpp: when a charge ends ----------------------------
    bool max_charge_time_exceeded() const;
    /** Whether the voltage rose by 0.0 to 0.1 V over the last 600 samples of this leg. */
    bool voltage_has_leveled_off() const;
    /** @return false if the leg has fewer than 60 samples for each of the `minutes` */
    bool delta_voltage(int minutes, double& delta) const;

    // ---- engine/operator.cpp: the operator's buttons ----------------------
    void lock_controls();
    void unlock_controls();

    // ---- logs/writer.cpp: the two log files -------------------------------
    /** Opens both logs. False if the operator cancels, or if a file fails, which is then shown. */
    bool begin_log();
    void write_data_log_header();
    void write_charge_cycle_header();
    void write_discharge_cycle_header();
    void append_data_log(double time, double voltage);
    /** @param ir ohms; 0.0 for none */
    void append_data_log(double time, double amp_hours, double voltage, double current, double ir);
    /** Time-stamped; lost without an open event log. */
    void append_text_log(const QString& text);
    /** Copies a log into the PDF directory; shows a failure. */
    void archive_file(QFile* file);
    /** Opens the two logs for writing; shows a failure and then unloads all. */
    bool ui_safe_open_log();
    /** Ends the test: cycles deleted, logs closed, instrument off, parameters kept. */
    void unload_test_data();
    void set_log_all_telemetry(bool on);

    // ---- logs/reader.cpp: a log becomes a test again ----------------------
    /** Reads `data_log` and shows its parameters; shows a failure and then unloads all. */
    bool ui_safe_read_log();
    /** Reads `data_log` from its start, of whichever generation it is. */
    bool read_data_log();
    /** Reads a current log behind its first line. A refused one leaves behind what was understood. */
    bool read_new_log(QTextStream* stream);
    /** The same for a log of the older generation. */
    bool read_old_log(QTextStream* stream);

    // ---- panel/set_up.cpp: the panel's set-up and sizes -------------------
    void set_widget_sizes();
    void set_tooltips();  ///< each control's help; panel/tooltips.cpp

    // ---- panel/display.cpp: every label at every moment -------------------
    /** Writes the parameters into the controls. */
    void populate_ui();
    /** Refreshes whatever is derived from the test's state. */
    void update_ui();

    // ---- panel/selection.cpp: the station's row above the charts ----------
    /** Fills the colour box, whose items bear the station's identity; the choice stays. */
    void repopulate_color_combobox();

public slots:
    void slot_measurement();   ///< engine/phases.cpp
    void slot_id_change();     ///< likewise
    void slot_blink(bool on);  ///< panel/display.cpp

signals:
    void sig_id_change();
    void sig_max_cycle_change();
    void sig_close_request(TestStation* station);
    void sig_repaint_chart_request();

private slots:
    // ---- engine/operator.cpp: the operator's buttons ----------------------
    void on_pbStartSkip_clicked();
    void on_pbNewTest_clicked();
    void on_pbClose_clicked();
    void on_sbNumberOfCycles_valueChanged(int value);

    // ---- logs/load.cpp, panel/report.cpp: an earlier log, a page ----------
    void on_pbLoadLog_clicked();
    void on_pbGeneratePDF_clicked();

    // ---- panel/profiles.cpp: the saved sets of parameters -----------------
    void on_cbProfile_currentTextChanged(const QString& text);
    void on_pbSaveProfile_clicked();
    void on_pbDeleteProfile_clicked();

    // ---- panel/selection.cpp: the station's row above the charts ----------
    void slot_all_cycles_checkbox_clicked();
    void slot_color_change(int index);

    // ---- panel/edits.cpp: what the operator types -------------------------
    void on_pbExpandCollapse_clicked();
    void on_pbDirectory_clicked();
    void on_leProfileName_textEdited(const QString& text);
    void on_leSerialNumber_textEdited(const QString& text);
    void on_leMaxChargeTime_textEdited();
    void on_leLowVoltageCutoff_textEdited();
    void on_leFinalCharge_textEdited();
    void on_leInternalResistanceTestIntervalAh_textEdited();
    void on_cbDetectFullCharge_stateChanged(int state);
    void on_cbPromptToDischarge_stateChanged(int state);
    void on_cbMeasureInternalResistance_stateChanged(int state);

private:
    // ---- engine/phases.cpp: one telemetry line, one change of phase -------
    void enter_phase(Phase new_phase);
    void begin_charge_leg();
    void begin_discharge();
    void begin_cycle();
    void record_measurement();
    void check_transitions();

    // ---- engine/charge.cpp: when a charge ends ----------------------------
    void check_charge();
    void check_leveled_charge();
    void check_full_charge_test();
    void check_final_charge();
    void check_final_charge_test();

    // ---- engine/discharge.cpp: what a discharge delivers, when it ends ----
    void record_discharge(double time, double elapsed);
    void check_discharge();

    // ---- engine/resistance.cpp: the load's short absences -----------------
    void check_internal_resistance_schedule();
    /** @return the resistance in ohms if this very line completed the test, else 0 */
    double check_internal_resistance_test();
    void check_internal_resistance_recovery();
    /** Puts the readings from before the test in place of the live ones. */
    void freeze_readings();

    // ---- logs/writer.cpp, logs/reader.cpp ---------------------------------
    void share_data_log();
    void delete_cycles();
    bool read_log(QTextStream& stream, bool (*read)(QTextStream&, LogSink&));

    // ---- panel/set_up.cpp, panel/selection.cpp ----------------------------
    void set_up_panel();
    void set_up_all_cycles_checkbox();
    void set_up_color_combobox();

    // ---- panel/display.cpp, panel/readouts.h ------------------------------
    void show_start_skip(StartSkip button);

    Readouts readouts{*this};

public:
    // ---- shared data: parameters of the test ------------------------------
    int charge_test_interval = 300;  ///< seconds between charge tests
    int preview_number = 0;          ///< counted from 1; 0 with an instrument
    bool prompt_to_discharge = false;
    bool detect_full_charge = false;
    bool measure_internal_resistance = true;
    double internal_resistance_test_interval_ah = 0.5;
    int max_charge_time = 21600;       ///< seconds; the panel shows hours
    double low_voltage_cutoff = 19.0;  ///< volts

    // ---- shared data: the row above the charts, placed by the window ------
    QLabel serial_number_label;
    QComboBox color_combobox;
    QCheckBox all_cycles_checkbox;

    // ---- shared data: the engine, the instrument and the logs -------------
    Series charge_voltage_series;  ///< present charge leg: x seconds since it began, y volts
    QColor color = Qt::black;      ///< of the station's curves
    std::unique_ptr<Ui::TestStation> ui;
    Kestrometer* kestrometer = nullptr;  ///< owned; null in a preview
    QString log_dir;
    QString profile_name;  ///< name of the battery
    bool serial_number_edited = false;
    QString serial_number;
    double final_voltage = 0.0;  ///< volts at which the last charge may stop
    int number_of_cycles = 1;
    QFile* data_log = nullptr;  ///< owned; a test runs only while this is not null
    QFile* text_log = nullptr;  ///< owned
    bool reads_log = false;     ///< more cycles may come before anything is painted
    QDateTime leg_start_time;   ///< start of the present charge or discharge
    Phase phase = PHASE_IDLE;
    TestCycle* current_cycle = nullptr;  ///< in progress or last finished; one of `cycles`
    double next_ir_check_ah = 0.0;       ///< amp-hours at which the next resistance test starts
    QDateTime next_charge_test_timeout;
    const QString no_data_text = "---";
    double ir_test_voltage = 0.0;      ///< volts under load, when the resistance test started
    double ir_test_current = 0.0;      ///< amps, likewise
    double charge_test_voltage = 0.0;  ///< volts when the full charge test started
    QList<TestCycle*> cycles;          ///< owned, oldest first
};
