#include "report_page_bench.h"

#include "charts/expected_drawing.h"
#include "report/report_layout.h"

#include <QPainter>

#include <cmath>

namespace
{
void dress(LineChart& chart, const QString& title)
{
    pin_fonts(chart);
    chart.top_axis.caption = title;
    chart.bottom_axis.caption = "Amp-Hours (Ah)";
    chart.bottom_axis.forced_range.min = 0.0;
    chart.left_axis.forced_range.min = 0.0;
}
}  // namespace

ReportPageBench::ReportPageBench()
{
    report.battery_name = "Pack A";
    report.serial_number = "1042";
    report.no_data_text = "---";
    report.voltage_chart = &voltage_chart;
    report.resistance_chart = &resistance_chart;
    dress(voltage_chart, "Voltage");
    dress(resistance_chart, "Resistance");
}

Curves& ReportPageBench::add_cycle(double amp_hours, bool ticked)
{
    owned.push_back(std::make_unique<Curves>());
    Curves& curves = *owned.back();
    const int points = static_cast<int>(std::lround(amp_hours * 100.0));
    for (int i = 0; i < points; ++i) {
        curves.voltage.add(i * 0.01, 25.0 - 5.0 * i / points);
        curves.current.add(i * 0.01, 2.0);
        if (i % 50 == 25)
            curves.resistance.add(i * 0.01, 60.0 + 0.1 * i);
    }
    const QDate day = QDate(2020, 4, 3).addDays(report.cycles.size());
    report.cycles << ReportCycle{ticked,          QDateTime(day, QTime(23, 59)),
                                 amp_hours,       amp_hours * 22.5,
                                 "65 mOhm",       &curves.voltage,
                                 &curves.current, &curves.resistance};
    return curves;
}

const RecordingPaintDevice& ReportPageBench::plot()
{
    device = std::make_unique<RecordingPaintDevice>(PAGE.width(), PAGE.height(), 600);
    QPainter painter(device.get());
    painter.setFont(pinned_font(9));
    plot_report(&painter, report, ReportLayout(600, PAGE));
    return *device;
}

QStringList settings_at(const RecordingPaintDevice& device, const QString& setting,
                        const QString& drawing)
{
    QStringList found;
    QString present;
    for (const QString& line : device.lines) {
        if (line.startsWith(setting + ' '))
            present = line.mid(setting.size() + 1);
        if (line.startsWith(drawing))
            found << present;
    }
    return found;
}
