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
    row_text.clear();
    append_fixed(row_text, row.seconds, 1);
    row_text.add(',');
    append_fixed(row_text, test_seconds(row), 1);
    row_text.add(',');
    if (time_known())
        clock.append_time(row_text, milliseconds(row));
    row_text.add(',');
    append_fixed(row_text, row.volts, 2);
    row_text.add(',');
    if (section.kind == SectionKind::Discharge) {
        append_fixed(row_text, -row.amps, 2);
        row_text.add(',');
        append_fixed(row_text, row.amp_hours, 3);
        row_text.add(',');
        append_fixed(row_text, row.watt_hours, 4);
        row_text.add(',');
        if (row.has_resistance)
            append_fixed(row_text, row.milliohms, 0);
    } else {
        row_text.add(",,,");
    }
    row_text.add("\r\n");
    out.write(prefix);
    out.write(row_text.data(), row_text.size());
}
