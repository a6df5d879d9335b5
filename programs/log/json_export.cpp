#include "log/json_export.h"

#include "log/fixed_text.h"
#include "log/log_json.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>

namespace
{
QByteArray compact(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

void append_number(RowText& text, double value, int decimals)
{
    if (std::isfinite(value))
        append_fixed(text, value, decimals);
    else
        text.add("null");
}

/** An object's text, open for one more key. */
QByteArray opened(const QJsonObject& object)
{
    QByteArray text = compact(object);
    text.chop(1);
    return text;
}
}  // namespace

void JsonExport::put_head()
{
    if (head_put)
        return;
    head_put = true;
    out.write(opened({{"battery", profile_name},
                      {"serial_number", serial_number},
                      {"generation", generation_name(generation)}}) +
              ",\"sections\":[");
}

void JsonExport::section_begun(const Section& section)
{
    Exporter::section_begun(section);
    put_head();
    const bool charge = section.kind == SectionKind::Charge;
    row_text.clear();
    if (time_known())
        clock.append_time(row_text, milliseconds(Row()));
    const QString start = QString::fromLatin1(row_text.data(), row_text.size());
    QJsonArray columns = {"section_time_s", "test_time_s", "voltage_V"};
    if (!charge)
        for (const char* name :
             {"current_A", "charge_Ah", "energy_live_Wh", "internal_resistance_mOhm"})
            columns << name;
    out.write(step == 1 ? "\n" : ",\n");
    out.write(opened({{"kind", kind_name(section.kind)},
                      {"number", section.number},
                      {"start", start.isEmpty() ? QJsonValue() : start},
                      {"parameters", parameters_json(section.parameters, generation)},
                      {"columns", columns}}) +
              ",\"rows\":[");
    first_row = true;
}

void JsonExport::row_read(const Section& section, const Row& row, const LogLine&)
{
    note_row(row);
    row_text.clear();
    row_text.add(first_row ? "\n[" : ",\n[");
    first_row = false;
    append_number(row_text, row.seconds, 1);
    row_text.add(',');
    append_number(row_text, test_seconds(row), 1);
    row_text.add(',');
    append_number(row_text, row.volts, 2);
    if (section.kind == SectionKind::Discharge) {
        row_text.add(',');
        append_number(row_text, -row.amps, 2);
        row_text.add(',');
        append_number(row_text, row.amp_hours, 3);
        row_text.add(',');
        append_number(row_text, row.watt_hours, 4);
        row_text.add(',');
        append_number(row_text, row.has_resistance ? row.milliohms : std::nan(""), 0);
    }
    row_text.add(']');
    out.write(row_text.data(), row_text.size());
}

void JsonExport::section_ended(const Section&)
{
    out.write("]}");
}

void JsonExport::finish()
{
    put_head();
    out.write("\n]}\n");
}
