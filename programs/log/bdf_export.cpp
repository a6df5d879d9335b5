#include "log/bdf_export.h"

#include "log/fixed_text.h"

#include <QCoreApplication>
#include <QJsonArray>

namespace
{
const char* const COLUMNS[] = {
    "Test Time / s",
    "Voltage / V",
    "Current / A",
    "Unix Time / s",
    "Cycle Count / 1",
    "Step Count / 1",
    "Discharging Capacity / Ah",
    "Discharging Energy / Wh",
    "Internal Resistance / Ohm",
};
}

void BdfExport::begin_log(LogGeneration log_generation)
{
    Exporter::begin_log(log_generation);
    QByteArrayList titles;
    for (const char* name : COLUMNS)
        titles << name;
    out.write(titles.join(',') + "\r\n");
}

void BdfExport::row_read(const Section& section, const Row& row, const LogLine&)
{
    note_row(row);
    if (section.kind == SectionKind::Charge) {
        ++charge_rows;
        return;
    }
    ++discharge_rows;
    row_text.clear();
    append_fixed(row_text, test_seconds(row), 1);
    row_text.add(',');
    append_fixed(row_text, row.volts, 2);
    row_text.add(',');
    append_fixed(row_text, -row.amps, 2);
    row_text.add(',');
    if (time_known())
        append_fixed(row_text, double(milliseconds(row)) / 1000.0, 1);
    row_text.add(',');
    row_text.add(QByteArray::number(section.number));
    row_text.add(',');
    row_text.add(QByteArray::number(step));
    row_text.add(',');
    append_fixed(row_text, row.amp_hours, 3);
    row_text.add(',');
    append_fixed(row_text, row.watt_hours, 4);
    row_text.add(',');
    if (row.has_resistance)
        append_fixed(row_text, row.milliohms / 1000.0, 3);
    row_text.add("\r\n");
    out.write(row_text.data(), row_text.size());
}

QStringList BdfExport::notes() const
{
    if (charge_rows == 0)
        return QStringList();
    const QString rows = charge_rows == 1 ? "1 row of a charge is"
                                          : QString("%1 rows of charges are").arg(charge_rows);
    return {rows + " left out: the log holds no current there, which the Battery Data Format "
                   "requires."};
}

QJsonObject BdfExport::metadata(const QString& log_name) const
{
    QJsonArray columns;
    for (const char* name : COLUMNS)
        columns << name;
    return {{"format", "Battery Data Format"},
            {"source", log_name},
            {"made_by",
             QCoreApplication::applicationName() + ' ' + QCoreApplication::applicationVersion()},
            {"battery", profile_name},
            {"serial_number", serial_number},
            {"instrument", "Kestrometer"},
            {"columns", columns},
            {"rows", discharge_rows},
            {"charge_rows_left_out", charge_rows},
            {"current_sign", "discharge is negative"},
            {"voltage_resolution_volts", 0.01},
            {"current_resolution_amps", 0.01},
            {"capacity_resolution_amp_hours", 0.001}};
}
