#include "report/report_page.h"

#include "charts/chart_kinds.h"
#include "charts/chart_pen.h"
#include "charts/line_chart.h"
#include "charts/plot_text.h"
#include "common/build_info.h"
#include "common/date_time.h"
#include "report/error_bars.h"
#include "report/string_grid.h"

#include <QPainter>
#include <QStringList>

#include <algorithm>

namespace
{
constexpr int TITLE_POINTS = 16;
constexpr int TABLE_POINTS = 8;
constexpr int FOOTER_POINTS = 6;

constexpr double LEAST_AMP_HOURS = 0.1;  // a discharge without more has no figures

const QStringList ROW_LABELS = {"",
                                "Date",
                                "Discharge Capacity",
                                "Discharge Energy",
                                "Avg. Discharge Current",
                                "Avg. Int. Resistance"};

void set_font_size(QPainter* painter, int points)
{
    painter->setFont(QFont(painter->font().family(), points, -1, false));
}

QString with_unit(double value, const QString& unit)
{
    return QString::number(value, 'f', 2) + " " + unit;
}

/** One text for each row. */
QStringList table_column(const ReportCycle& cycle, int number, const QString& no_data_text)
{
    QStringList texts = {QString("Discharge # %1").arg(number),
                         cycle.start_time.toString(Time::ISO_8601_DATE_FORMAT)};
    if (cycle.amp_hours > LEAST_AMP_HOURS)
        texts << with_unit(cycle.amp_hours, "Ah") << with_unit(cycle.watt_hours, "Wh")
              << with_unit(cycle.current_vs_amphours->avg_y(), chart_kind('I').unit)
              << cycle.resistance;
    while (texts.size() < ROW_LABELS.size())
        texts << no_data_text;
    return texts;
}

void set_column(StringGrid& table, int col, const QStringList& texts)
{
    for (int row = 0; row < texts.size(); ++row)
        table.set_text(row, col, texts[row]);
}

int count_ticked(const QList<ReportCycle>& cycles)
{
    return static_cast<int>(std::count_if(cycles.begin(), cycles.end(),
                                          [](const ReportCycle& cycle) { return cycle.ticked; }));
}

QList<Series*> ticked_curves(const Report& report, Series* ReportCycle::*curve)
{
    QList<Series*> curves;
    for (const ReportCycle& cycle : report.cycles) {
        if (cycle.ticked)
            curves << cycle.*curve;
    }
    return curves;
}

/** Of all discharges on purpose: one that is not ticked still shows how far its readings reach. */
QList<ResistanceReadings> all_readings(const Report& report)
{
    QList<ResistanceReadings> readings;
    for (const ReportCycle& cycle : report.cycles)
        readings << ResistanceReadings{cycle.internal_resistance, cycle.current_vs_amphours};
    return readings;
}

void plot_header_image(QPainter* painter, const QPixmap& image, const ReportLayout& layout)
{
    if (!image.isNull())
        painter->drawPixmap(layout.header_image(image.size()), image, QRectF(image.rect()));
}

void plot_titles(QPainter* painter, const Report& report, const ReportLayout& layout)
{
    const auto plot_line = [painter](const QString& text, const QPointF& at) {
        set_font_size(painter, TITLE_POINTS);
        plot_text(painter, text, 0, Qt::AlignHCenter, Qt::AlignTop, false, at.x(), at.y());
    };
    plot_line("Battery Discharge Test Results", layout.title());
    plot_line(report.battery_name + " SN: " + report.serial_number, layout.subtitle());
}

/** @return the table's height */
int plot_table(QPainter* painter, const Report& report, const ReportLayout& layout)
{
    StringGrid table;
    fill_report_table(table, report);
    table.set_row_height(layout.table_row_height(TABLE_POINTS));
    set_font_size(painter, TABLE_POINTS);
    painter->setPen(chart_pen(Qt::black, 1.0));
    table.plot(painter, layout.table());
    return table.get_total_height();
}

void plot_chart(QPainter* painter, LineChart* chart, const QList<Series*>& curves, QRect rect,
                const ChartKind& kind, const ReportLayout& layout)
{
    chart->plot(curves, painter, rect, layout.gridline_pixels(), kind.style, SMOOTHING_INTERVAL_AH,
                layout.dot_radius(), layout.resolution, true, nullptr);
}

void plot_resistance_chart(QPainter* painter, const Report& report, QRect rect,
                           const ReportLayout& layout)
{
    LineChart* const chart = report.resistance_chart;
    const QList<ResistanceReadings> readings = all_readings(report);
    chart->left_axis.forced_range.max = highest_error_bar_end(readings);
    plot_chart(painter, chart, ticked_curves(report, &ReportCycle::internal_resistance), rect,
               chart_kind('R'), layout);

    painter->setPen(QColor(Qt::black));
    for (const QLine& bar : error_bars(readings, chart->bottom_axis, chart->left_axis))
        painter->drawLine(bar);
}

/** In whatever family the charts have left behind. */
void plot_footer(QPainter* painter, const ReportLayout& layout)
{
    QFont font = painter->font();
    font.setPointSize(FOOTER_POINTS);
    painter->setFont(font);
    const QString text =
        QString("Software Version: %1, %2").arg(BuildInfo::version, BuildInfo::date);
    const QPointF at = layout.footer();
    plot_text(painter, text, 0, Qt::AlignRight, Qt::AlignBottom, false, at.x(), at.y());
}
}  // namespace

void fill_report_table(StringGrid& table, const Report& report)
{
    table.set_size(ROW_LABELS.size(), count_ticked(report.cycles) + 1);
    table.set_center_first_row(true);
    set_column(table, 0, ROW_LABELS);
    int col = 1;
    for (int i = 0; i < report.cycles.size(); ++i) {
        if (report.cycles[i].ticked)
            set_column(table, col++, table_column(report.cycles[i], i + 1, report.no_data_text));
    }
}

void plot_report(QPainter* painter, const Report& report, const ReportLayout& layout)
{
    plot_header_image(painter, report.header_image, layout);
    plot_titles(painter, report, layout);
    const int table_height = plot_table(painter, report, layout);
    plot_chart(painter, report.voltage_chart,
               ticked_curves(report, &ReportCycle::voltage_vs_amphours),
               layout.upper_chart(table_height), chart_kind('V'), layout);
    plot_resistance_chart(painter, report, layout.lower_chart(table_height), layout);
    plot_footer(painter, layout);
}
