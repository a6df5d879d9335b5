#include "station/test_station.h"

#include "common/message_boxes.h"
#include "station/logs/current_log_reader.h"
#include "station/logs/log_reader.h"
#include "station/logs/old_log_reader.h"

#include <QFile>
#include <QTextStream>

#include <functional>

namespace
{
/** Fills the cycles of a station. */
class CycleSink final : public LogSink
{
public:
    void begin_discharge(const LogLine&) override
    {
        cycle = begin_cycle();
    }

    void take_discharge_start(const QDateTime& start) override
    {
        cycle->start_time = start;
    }

    void take_row(const LogRow& row, const LogLine&) override
    {
        cycle->amp_hours = row.amp_hours;
        cycle->watt_hours = row.watt_hours;
        cycle->add_reading(row.voltage, row.current);
        if (row.has_resistance)
            cycle->internal_resistance.add(row.amp_hours, row.resistance * 1000.0);
    }

    std::function<TestCycle*()> begin_cycle;  ///< appends an empty cycle

private:
    TestCycle* cycle = nullptr;  ///< the last one begun
};
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
    switch (log_generation(stream.readLine())) {
    case LogGeneration::None:
        return false;
    case LogGeneration::Older:
        return read_old_log(&stream);
    case LogGeneration::Current:
        return read_new_log(&stream);
    }
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

bool TestStation::read_log(QTextStream& stream, bool (*read)(QTextStream&, LogSink&))
{
    CycleSink sink;
    sink.profile_name = profile_name;
    sink.serial_number = serial_number;
    sink.parameters = parameters();
    sink.begin_cycle = [this, &sink] {
        // Taken before the end already: a new cycle is shown as one of those the log asks for.
        take(sink.parameters);
        begin_cycle();
        return current_cycle;
    };
    reads_log = true;
    const bool accepted = read(stream, sink);
    reads_log = false;
    profile_name = sink.profile_name;
    serial_number = sink.serial_number;
    take(sink.parameters);
    return accepted;
}
