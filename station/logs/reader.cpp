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
    return read_log(*stream, read_current_log);
}

bool TestStation::read_old_log(QTextStream* stream)
{
    return read_log(*stream, read_older_log);
}

bool TestStation::read_log(QTextStream& stream, bool (*read)(QTextStream&, LogTarget&))
{
    LogTarget target{profile_name, serial_number, parameters(), nullptr};
    target.begin_cycle = [this, &target] {
        // Taken before the end already: a new cycle is shown as one of those the log asks for.
        take(target.parameters);
        begin_cycle();
        return target_of(*current_cycle);
    };
    const bool accepted = read(stream, target);
    profile_name = target.profile_name;
    serial_number = target.serial_number;
    take(target.parameters);
    return accepted;
}
