#include "support/report_bench.h"

#include "config/settings.h"
#include "station/test_station.h"

#include <QDesktopServices>
#include <QDir>
#include <QUrl>

#include <cmath>

namespace
{
void dress(LineChart& chart, const QString& title, const QString& y_caption)
{
    chart.top_axis.caption = title;
    chart.bottom_axis.caption = "Amp-Hours (Ah)";
    chart.left_axis.caption = y_caption;
    chart.grid_pen.setColor(QColor(240, 240, 240));
    chart.bottom_axis.forced_range.min = 0.0;
    chart.left_axis.forced_range = Interval();
    chart.left_axis.forced_range.min = 0.0;
}
}  // namespace

ReportBench::ReportBench()
{
    QDesktopServices::setUrlHandler("file", this, "slot_open");
    dress(TestStation::voltage_vs_amphours_chart, "Voltage vs. Amp-Hours", "Voltage (V)");
    dress(TestStation::internal_resistance_chart, "Internal Resistance vs. Amp-Hours",
          QString("Internal Resistance (m%1)").arg(QChar(0x2126)));
    bench.start();
}

ReportBench::~ReportBench()
{
    QDesktopServices::unsetUrlHandler("file");
}

TestCycle* ReportBench::add_cycle(const CycleShape& shape)
{
    constexpr double amps = 2.0;
    constexpr double step = 0.01;
    auto* cycle = new TestCycle;
    cycle->start_time = bench.clock.now;
    cycle->amp_hours = shape.amp_hours;
    cycle->watt_hours = shape.amp_hours * 22.0;
    cycle->checkbox.setChecked(shape.ticked);
    const int points = static_cast<int>(std::lround(shape.amp_hours / step));
    for (int i = 0; i < points; ++i) {
        const double drained = static_cast<double>(i) / points;
        cycle->voltage_vs_amphours.add(i * step, 25.0 - 4.0 * drained - 2.0 * std::pow(drained, 8));
        cycle->current_vs_amphours.add(i * step, amps);
    }
    for (int i = 1; i <= shape.readings; ++i) {
        const int point = points * i / (shape.readings + 1);
        cycle->internal_resistance.add(cycle->current_vs_amphours.points[point].x(),
                                       shape.milliohms + i);
    }
    bench.station->cycles.append(cycle);
    return cycle;
}

void ReportBench::generate()
{
    bench.press("pbGeneratePDF");
}

QString ReportBench::pdf_path() const
{
    return QDir(Settings::get_pdf_dir())
        .filePath(bench.station->profile_name + "_" + bench.station->serial_number + ".pdf");
}

void ReportBench::slot_open(const QUrl& url)
{
    opened << url.toLocalFile();
}
