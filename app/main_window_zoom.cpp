#include "app/main_window.h"

#include "ui_main_window.h"

#include "charts/paint_box.h"
#include "common/message_boxes.h"
#include "station/cycle_charts.h"

namespace
{
// Data units, be it amp-hours, volts, amps or milliohms.
constexpr double LEAST_ZOOM = 0.1;
}  // namespace

void MainWindow::slot_rubberband(QRect rect)
{
    const bool upper = sender() == voltage_chart_box;
    if (!upper && sender() != bottom_chart_box)
        return;
    const ChartKind* kind = kind_shown_in(upper ? voltage_chart_box : bottom_chart_box);
    if (kind == nullptr)
        return;

    const LineChart& chart = cycle_chart(kind->code).chart;
    auto zoom = std::make_unique<ZoomInterval>();
    zoom->x.include(chart.bottom_axis.unmap_value(rect.left()));
    zoom->x.include(chart.bottom_axis.unmap_value(rect.right()));
    zoom->y.include(chart.left_axis.unmap_value(rect.bottom()));
    zoom->y.include(chart.left_axis.unmap_value(rect.top()));
    // A zoomed chart without a curve has no scale: there the sizes may be no numbers at all.
    if (!(zoom->x.size() >= LEAST_ZOOM && zoom->y.size() >= LEAST_ZOOM)) {
        show_error("Zoom limit exceeded.");
        return;
    }
    (upper ? voltage_zoom : bottom_zoom) = std::move(zoom);
    (upper ? ui->pbCancelVoltageZoom : ui->pbCancelCurrentZoom)->setEnabled(true);
    slot_refresh_charts();
}

void MainWindow::on_pbCancelVoltageZoom_clicked()
{
    ui->pbCancelVoltageZoom->setEnabled(false);
    voltage_zoom.reset();
    voltage_chart_box->repaint();
}

void MainWindow::on_pbCancelCurrentZoom_clicked()
{
    cancel_bottom_zoom();
}

void MainWindow::cancel_bottom_zoom()
{
    ui->pbCancelCurrentZoom->setEnabled(false);
    bottom_zoom.reset();
    bottom_chart_box->repaint();
}
