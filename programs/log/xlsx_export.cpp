#include "log/xlsx_export.h"

#include "log/log_json.h"
#include "log/workbook.h"
#include "records/log_summary.h"

namespace
{
constexpr lxw_row_t CHART_HEIGHT = 16;  // rows
constexpr int MOST_CHARTED_CYCLES = 100;

const QStringList SUMMARY_TITLES = {
    "kind",
    "number",
    "start",
    "duration (s)",
    "rows",
    "first (V)",
    "lowest (V)",
    "last (V)",
    "charge (Ah)",
    "energy live (Wh)",
    "energy after loading (Wh)",
    "resistances",
    "mean (mOhm)",
};
const QStringList CHARGE_TITLES = {"section time (s)", "test time (s)", "time", "voltage (V)"};
const QStringList CYCLE_TITLES =
    CHARGE_TITLES +
    QStringList{"current (A)", "charge (Ah)", "energy live (Wh)", "resistance (mOhm)"};

enum Column
{
    SECTION_TIME,
    TEST_TIME,
    TIME,
    VOLTAGE,
    CURRENT,
    CHARGE,
    ENERGY,
    RESISTANCE
};

struct ChartKind
{
    const char* title;
    Column column;
    bool marks;
};

constexpr ChartKind CHARTS[] = {
    {"voltage (V)", VOLTAGE, false},
    {"current (A)", CURRENT, false},
    {"resistance (mOhm)", RESISTANCE, true},
};

class XlsxExport final : public Exporter
{
public:
    XlsxExport(OutputFile& to, const QTimeZone& zone)
        : Exporter(to, zone),
          book(to.temporary_path()),
          summary(book.add_sheet("Summary", SUMMARY_TITLES))
    {
    }

    void finish() override
    {
        book.end_sheet(summary);
        const Sheet listed = add_parameters();
        book.end_sheet(listed);
        add_charts(summary, summary.next_row + 1, 0, cycles);
        out.written_by_others(book.close());
    }

protected:
    void section_begun(const Section& section) override
    {
        Exporter::section_begun(section);
        const bool charge = section.kind == SectionKind::Charge;
        sheet = book.add_sheet(QString(charge ? "Charge %1" : "Cycle %1").arg(section.number),
                               charge ? CHARGE_TITLES : CYCLE_TITLES);
        resistance = Resistance();
        amp_hours = 0.0;
        sections << section;
    }

    void row_read(const Section& section, const Row& row, const LogLine&) override
    {
        note_row(row);
        if (sheet.next_row == LXW_ROW_MAX) {
            book.end_sheet(sheet);
            sheet =
                book.add_sheet(QString::fromUtf8(sheet.name),
                               section.kind == SectionKind::Charge ? CHARGE_TITLES : CYCLE_TITLES);
        }
        sheet.add_number(SECTION_TIME, row.seconds);
        sheet.add_number(TEST_TIME, test_seconds(row));
        sheet.add_text(TIME, time_text(row));
        sheet.add_number(VOLTAGE, row.volts);
        if (section.kind == SectionKind::Discharge)
            add_discharge(row);
        ++sheet.next_row;
    }

    void section_ended(const Section& section) override
    {
        const bool discharge = section.kind == SectionKind::Discharge;
        if (discharge && sheet.next_row > 1) {
            add_charts(sheet, 1, sheet.columns + 1, {sheet});
            if (cycles.size() < MOST_CHARTED_CYCLES)
                cycles << sheet;
        }
        book.end_sheet(sheet);
        add_summary(section);
    }

private:
    QString time_text(const Row& row)
    {
        QByteArray text;
        if (time_known())
            clock.append_time(text, milliseconds(row));
        return QString::fromLatin1(text);
    }

    void add_discharge(const Row& row)
    {
        sheet.add_number(CURRENT, -row.amps);
        sheet.add_number(CHARGE, row.amp_hours);
        sheet.add_number(ENERGY, row.watt_hours);
        amp_hours = row.amp_hours;
        if (!row.has_resistance)
            return;
        sheet.add_number(RESISTANCE, row.milliohms);
        resistance.add(row.milliohms);
    }

    void add_summary(const Section& section)
    {
        int column = 0;
        summary.add_text(column++, kind_name(section.kind));
        summary.add_number(column++, section.number);
        summary.add_text(column++, time_text(Row()));
        summary.add_number(column++, section.count.last_seconds);
        summary.add_number(column++, double(section.count.rows));
        summary.add_number(column++, section.first_volts);
        summary.add_number(column++, section.lowest_volts);
        summary.add_number(column++, section.last_volts);
        if (section.kind == SectionKind::Discharge) {
            summary.add_number(column++, amp_hours);
            summary.add_number(column++, energy.watt_hours());
            summary.add_number(column++, watt_hours_loaded);
            summary.add_number(column++, double(resistance.count));
            if (resistance.count > 0)
                summary.add_number(column++, resistance.mean);
        }
        ++summary.next_row;
    }

    Sheet add_parameters()
    {
        Sheet to = book.add_sheet("Parameters", {"section", "parameter", "value"});
        const auto add = [&to](const QString& section, const QString& name, const QString& value) {
            to.add_text(0, section);
            to.add_text(1, name);
            to.add_text(2, value);
            ++to.next_row;
        };
        add("", "battery", profile_name);
        add("", "serial number", serial_number);
        for (const Section& section : qAsConst(sections)) {
            const QString name = QString("%1 %2").arg(kind_name(section.kind)).arg(section.number);
            const QJsonObject values = parameters_json(section.parameters);
            for (auto value = values.begin(); value != values.end(); ++value)
                add(name, value.key(), value.value().toVariant().toString());
        }
        return to;
    }

    void add_charts(Sheet& on, lxw_row_t row, int column, const QList<Sheet>& of)
    {
        if (of.isEmpty())
            return;
        for (const ChartKind& kind : CHARTS) {
            lxw_chart* const chart = book.add_chart("charge (Ah)", kind.title, kind.marks);
            for (const Sheet& from : of) {
                lxw_chart_series* const series = chart_add_series(
                    chart, from.range(CHARGE).constData(), from.range(kind.column).constData());
                chart_series_set_name(series, from.name.constData());
            }
            worksheet_insert_chart(on.worksheet, row, lxw_col_t(column), chart);
            row += CHART_HEIGHT;
        }
    }

    Workbook book;
    Sheet summary;
    Sheet sheet;  ///< of the section
    QList<Sheet> cycles;
    QList<Section> sections;
    Resistance resistance;
    double amp_hours = 0.0;
};
}  // namespace

std::unique_ptr<Exporter> make_xlsx_export(OutputFile& out, const QTimeZone& zone)
{
    return std::make_unique<XlsxExport>(out, zone);
}
