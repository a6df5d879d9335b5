#include "log/xlsx_export.h"

#include "log/log_json.h"
#include "log/workbook.h"
#include "records/log_summary.h"

#include <cmath>

namespace
{

/** How large charts are shown. */
struct ChartSize
{
    double width;    ///< as often as the library's own
    double height;   ///< as often as the library's own
    lxw_row_t rows;  ///< that it covers
};

constexpr ChartSize BESIDE_ROWS = {1.4, 1.2, 18};
constexpr ChartSize ON_SUMMARY = {3.1, 1.5, 23};

constexpr int MOST_CHARTED_CYCLES = 100;

constexpr double TIME_WIDTH = 28.0;  // characters: "2020-04-03T09:15:02.000+02:00"

const QVector<ColumnKind> SUMMARY_COLUMNS = {
    {"battery", 16.0, nullptr},
    {"serial number", 14.0, nullptr},
    {"kind", 10.0, nullptr},
    {"number", 8.0, "0"},
    {"start", TIME_WIDTH, nullptr},
    {"duration (s)", 12.0, "0.0"},
    {"rows", 9.0, "0"},
    {"first (V)", 9.0, "0.00"},
    {"lowest (V)", 10.0, "0.00"},
    {"last (V)", 9.0, "0.00"},
    {"charge (Ah)", 12.0, "0.000"},
    {"energy live (Wh)", 16.0, "0.000"},
    {"energy after loading (Wh)", 24.0, "0.000"},
    {"resistances", 12.0, "0"},
    {"mean (mOhm)", 13.0, "0.0"},
};
const QVector<ColumnKind> CHARGE_COLUMNS = {
    {"section time (s)", 15.0, "0.0"},
    {"test time (s)", 13.0, "0.0"},
    {"time", TIME_WIDTH, nullptr},
    {"voltage (V)", 11.0, "0.00"},
};
const QVector<ColumnKind> CYCLE_COLUMNS = CHARGE_COLUMNS + QVector<ColumnKind>{
                                                               {"current (A)", 11.0, "0.00"},
                                                               {"charge (Ah)", 12.0, "0.000"},
                                                               {"energy live (Wh)", 16.0, "0.0000"},
                                                               {"resistance (mOhm)", 18.0, "0"},
                                                           };
const QVector<ColumnKind> PARAMETER_COLUMNS = {
    {"section", 14.0, nullptr},
    {"parameter", 32.0, nullptr},
    {"value", 24.0, nullptr},
};

const QVector<ColumnKind>& columns_of(SectionKind kind)
{
    return kind == SectionKind::Charge ? CHARGE_COLUMNS : CYCLE_COLUMNS;
}

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
    bool below_zero;  ///< all of it
};

constexpr ChartKind CHARTS[] = {
    {"voltage (V)", VOLTAGE, false, false},
    {"current (A)", CURRENT, false, true},
    {"resistance (mOhm)", RESISTANCE, true, false},
};

/** What is known of the curves of some charts. */
struct Charted
{
    double lowest_volts = 0.0;
    bool resistances = false;
};

class XlsxExport final : public Exporter
{
public:
    XlsxExport(OutputFile& to, const QTimeZone& zone)
        : Exporter(to, zone),
          book(to.temporary_path()),
          summary(book.add_sheet("Summary", SUMMARY_COLUMNS))
    {
    }

    void finish() override
    {
        const Sheet listed = add_parameters();
        book.end_sheet(listed);
        summary.printed_rows =
            int(add_charts(summary, summary.next_row + 1, 0, ON_SUMMARY, cycles, of_cycles));
        book.set_page_title(summary, title());
        book.end_sheet(summary);
        out.written_by_others(book.close());
    }

protected:
    void section_begun(const Section& section) override
    {
        Exporter::section_begun(section);
        const bool charge = section.kind == SectionKind::Charge;
        begin_sheet(QString(charge ? "Charge %1" : "Cycle %1").arg(section.number), section.kind);
        resistance = Resistance();
        amp_hours = 0.0;
        sections << section;
    }

    void row_read(const Section& section, const Row& row, const LogLine&) override
    {
        note_row(row);
        if (sheet.next_row == LXW_ROW_MAX) {
            book.end_sheet(sheet);
            begin_sheet(QString::fromUtf8(sheet.name), section.kind);
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
            const Charted charted = {section.lowest_volts, resistance.count > 0};
            add_charts(sheet, 1, sheet.columns + 1, BESIDE_ROWS, {sheet}, charted);
            if (cycles.size() < MOST_CHARTED_CYCLES)
                add_to_summary(charted);
        }
        book.end_sheet(sheet);
        add_summary(section);
    }

private:
    QString title() const
    {
        return profile_name + ", " + serial_number;
    }

    void begin_sheet(const QString& name, SectionKind kind)
    {
        sheet = book.add_sheet(name, columns_of(kind));
        book.set_page_title(sheet, title());
    }

    QString time_text(const Row& row)
    {
        row_text.clear();
        if (time_known())
            clock.append_time(row_text, milliseconds(row));
        return QString::fromLatin1(row_text.data(), row_text.size());
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
        summary.add_text(column++, profile_name);
        summary.add_text(column++, serial_number);
        summary.add_text(column++, kind_name(section.kind));
        summary.add_number(column++, section.number);
        summary.add_text(column++, time_text(Row()));
        summary.add_number(column++, section.count.last_seconds);
        summary.add_number(column++, double(section.count.rows));
        for (const double volts : {section.first_volts, section.lowest_volts, section.last_volts})
            summary.add_number(column++, section.count.rows > 0 ? volts : std::nan(""));
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
        Sheet to = book.add_sheet("Parameters", PARAMETER_COLUMNS);
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
            const QJsonObject values = parameters_json(section.parameters, generation);
            for (auto value = values.begin(); value != values.end(); ++value)
                if (!value.value().isNull())
                    add(name, value.key(), value.value().toVariant().toString());
        }
        return to;
    }

    void add_to_summary(const Charted& charted)
    {
        const double lowest = charted.lowest_volts;
        of_cycles.lowest_volts = cycles.isEmpty() ? lowest : qMin(of_cycles.lowest_volts, lowest);
        of_cycles.resistances = of_cycles.resistances || charted.resistances;
        cycles << sheet;
    }

    /** One below the other; the row below them. */
    lxw_row_t add_charts(Sheet& on, lxw_row_t row, int column, const ChartSize& size,
                         const QList<Sheet>& of, const Charted& charted)
    {
        if (of.isEmpty() || on.worksheet == nullptr)
            return row;
        lxw_chart_options options = {};
        options.x_scale = size.width;
        options.y_scale = size.height;
        for (const ChartKind& kind : CHARTS) {
            if (kind.column == RESISTANCE && !charted.resistances)
                continue;
            lxw_chart* const chart = book.add_chart("charge (Ah)", kind.title, kind.marks);
            if (kind.below_zero)
                chart_axis_set_max(chart->y_axis, 0.0);
            // From zero on, a whole discharge would be a nearly level line.
            if (kind.column == VOLTAGE && charted.lowest_volts > 0.0)
                chart_axis_set_min(chart->y_axis, std::floor(charted.lowest_volts));
            for (const Sheet& from : of)
                book.add_curve(chart, from, CHARGE, kind.column);
            worksheet_insert_chart_opt(on.worksheet, row, lxw_col_t(column), chart, &options);
            row += size.rows;
        }
        return row;
    }

    Workbook book;
    Sheet summary;
    Sheet sheet;  ///< of the section
    QList<Sheet> cycles;
    Charted of_cycles;
    QList<Section> sections;
    Resistance resistance;
    double amp_hours = 0.0;
};
}  // namespace

std::unique_ptr<Exporter> make_xlsx_export(OutputFile& out, const QTimeZone& zone)
{
    return std::make_unique<XlsxExport>(out, zone);
}
