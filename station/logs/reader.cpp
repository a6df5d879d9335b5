#include "station/test_station.h"

#include "common/message_boxes.h"
#include "station/logs/current_log_reader.h"
#include "station/logs/old_log_reader.h"

#include <QFile>
#include <QTextStream>

namespace
{
CycleTarget target_of(TestCycle& cycle)
{
    CycleTarget target;
    target.start_time = &cycle.start_time;
    target.voltage_vs_amphours = &cycle.voltage_vs_amphours;
    target.current_vs_amphours = &cycle.current_vs_amphours;
    target.internal_resistance = &cycle.internal_resistance;
    target.amp_hours = &cycle.amp_hours;
    target.watt_hours = &cycle.watt_hours;
    return target;
}
}  // namespace

bool TestStation::ui_safe_read_log()
{
    if (!read_data_log()) {
        unload_test_data();
        show_error("Unable to read log file.");
        return false;
    }
    share_data_log();
    populate_ui();
    emit sig_max_cycle_change();
    return true;
}

bool TestStation::read_data_log()
{
    delete_cycles();
    data_log->seek(0);
    QTextStream stream(data_log);
    const QString mark = stream.readLine();
    if (mark == "Test Parameters:")
        return read_old_log(&stream);
    if (mark == "Kestrometer Log")
        return read_new_log(&stream);
    return false;
}

bool TestStation::read_new_log(QTextStream* stream)
{
    LogTarget target = log_target();
    return read_current_log(*stream, target);
}

bool TestStation::read_old_log(QTextStream* stream)
{
    LogTarget target = log_target();
    return read_older_log(*stream, target);
}

LogTarget TestStation::log_target()
{
    return {profile_name,
            serial_number,
            number_of_cycles,
            max_charge_time,
            detect_full_charge,
            low_voltage_cutoff,
            prompt_to_discharge,
            final_voltage,
            measure_internal_resistance,
            internal_resistance_test_interval_ah,
            [this] {
                begin_cycle();
                return target_of(*current_cycle);
            }};
}
