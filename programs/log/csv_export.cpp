#include "log/csv_export.h"

#include "log/fixed_text.h"

namespace
{
const char* const TITLES =
    "battery,serial_number,cycle,kind,section_time_s,test_time_s,time,voltage_V,"
    "current_A,charge_Ah,energy_live_Wh,internal_resistance_mOhm\r\n";

QByteArray field(const QString& text)
{
    QByteArray bytes = text.toUtf8();
    const bool plain = !bytes.contains(',') && !bytes.contains('"') && !bytes.contains('\n') &&
                       !bytes.contains('\r');
    return plain ? bytes : '"' + bytes.replace("\"", "\"\"") + '"';
}
}  // namespace

void CsvExport::begin_log(LogGeneration log_generation)
{
    Exporter::begin_log(log_generation);
    out.write(TITLES);
}

void CsvExport::section_begun(const Section& section)
{
    Exporter::section_begun(section);
    const bool charge = section.kind == SectionKind::Charge;
    prefix = field(profile_name) + ',' + field(serial_number) + ',' +
             QByteArray::number(section.number) + (charge ? ",charge," : ",discharge,");
}

void CsvExport::row_read(const Section& section, const Row& row, const LogLine&)
{
    note_row(row);
    text.resize(0);
    text += prefix;
    append_fixed(text, row.seconds, 1);
    text += ',';
    append_fixed(text, test_seconds(row), 1);
    text += ',';
    if (time_known())
        clock.append_time(text, milliseconds(row));
    text += ',';
    append_fixed(text, row.volts, 2);
    text += ',';
    if (section.kind == SectionKind::Discharge) {
        append_fixed(text, -row.amps, 2);
        text += ',';
        append_fixed(text, row.amp_hours, 3);
        text += ',';
        append_fixed(text, row.watt_hours, 4);
        text += ',';
        if (row.has_resistance)
            append_fixed(text, row.milliohms, 0);
    } else {
        text += ",,,";
    }
    text += "\r\n";
    out.write(text);
}
