#include "station/test_station.h"

#include "ui_test_station.h"

#include "config/settings.h"
#include "device/kestrometer.h"

QList<TestStation*> TestStation::all_instances;
int TestStation::num_previews = 0;
const QString TestStation::no_profile_text = "Select Profile...";
LineChart TestStation::voltage_vs_amphours_chart;
LineChart TestStation::current_vs_amphours_chart;
LineChart TestStation::internal_resistance_chart;
SelectionKillerDelegate TestStation::selection_killer_delegate;

TestStation::TestStation(QWidget* parent, Kestrometer* instrument)
    : QFrame(parent),
      ui(new Ui::TestStation),
      kestrometer(instrument),
      log_dir(Settings::get_log_dir())
{
    all_instances.append(this);
    ui->setupUi(this);
    set_up_all_cycles_checkbox();
    if (kestrometer == nullptr)
        preview_number = ++num_previews;
    set_up_panel();
}

TestStation::~TestStation()
{
    if (kestrometer != nullptr) {
        kestrometer->set_state(Off);
        delete kestrometer;
        kestrometer = nullptr;
    }
    unload_test_data();
    ui.reset();
    all_instances.removeAll(this);
}

QString TestStation::get_id() const
{
    return kestrometer != nullptr ? QString("Station %1").arg(kestrometer->id)
                                  : QString("Preview %1").arg(preview_number);
}

QString TestStation::get_short_id() const
{
    return kestrometer != nullptr ? QString("S%1").arg(kestrometer->id)
                                  : QString("P%1").arg(preview_number);
}

TestParameters TestStation::parameters() const
{
    TestParameters values;
    values.number_of_cycles = number_of_cycles;
    values.max_charge_time = max_charge_time;
    values.detect_full_charge = detect_full_charge;
    values.low_voltage_cutoff = low_voltage_cutoff;
    values.prompt_to_discharge = prompt_to_discharge;
    values.final_voltage = final_voltage;
    values.measure_internal_resistance = measure_internal_resistance;
    values.internal_resistance_test_interval_ah = internal_resistance_test_interval_ah;
    return values;
}

void TestStation::take(const TestParameters& given)
{
    number_of_cycles = given.number_of_cycles;
    max_charge_time = given.max_charge_time;
    detect_full_charge = given.detect_full_charge;
    low_voltage_cutoff = given.low_voltage_cutoff;
    prompt_to_discharge = given.prompt_to_discharge;
    final_voltage = given.final_voltage;
    measure_internal_resistance = given.measure_internal_resistance;
    internal_resistance_test_interval_ah = given.internal_resistance_test_interval_ah;
}

QString TestStation::get_port_name() const
{
    return kestrometer != nullptr ? kestrometer->get_port_name() : QString("Preview Only");
}
