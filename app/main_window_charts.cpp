#include "app/main_window.h"

#include "ui_main_window.h"

#include "charts/chart_palette.h"
#include "charts/paint_box.h"
#include "charts/plot_text.h"
#include "charts/raster_clip.h"
#include "common/colors.h"
#include "common/widget_sizing.h"
#include "config/settings.h"
#include "station/cycle_charts.h"
#include "station/test_station.h"

#include <QGuiApplication>
#include <QLabel>
#include <QMutex>
#include <QPainter>
#include <QPixmap>
#include <QScreen>
#include <QSignalBlocker>

#include <mutex>

namespace
{
constexpr double GRIDLINE_INCHES = 0.5;
constexpr double DOT_RADIUS_INCHES = 0.015625;
constexpr int LOGO_MARGIN = 3;
constexpr int BOTTOM_CHART_EMS = 8;

/** The texts that choose a lower chart, in the order of the table. */
QStringList choices()
{
    QStringList texts;
    for (const ChartKind& kind : CHART_KINDS)
        if (kind.choice != nullptr)
            texts << kind.choice;
    return texts;
}

/** Unchecked also without any cycle. */
Qt::CheckState common_check_state(const QList<TestCycle*>& cycles)
{
    int checked = 0;
    for (const TestCycle* cycle : cycles)
        if (cycle->checkbox.checkState() == Qt::Checked)
            ++checked;
    if (checked == 0)
        return Qt::Unchecked;
    return checked == cycles.size() ? Qt::Checked : Qt::PartiallyChecked;
}
}  // namespace

void MainWindow::set_up_chart_boxes()
{
    voltage_chart_box = new PaintBox(this);
    bottom_chart_box = new PaintBox(this);
    header_box = new PaintBox(this);
    ui->verticalLayout->addStretch();
    for (PaintBox* box : {voltage_chart_box, bottom_chart_box}) {
        box->rubberband_enabled = true;
        // Each paint fills the whole box: the ground below need not be painted first.
        box->setAttribute(Qt::WA_OpaquePaintEvent);
        // Its controls inherit that.
        box->setPalette(chart_palette());
        connect(box, &PaintBox::sig_rubberband, this, &MainWindow::slot_rubberband);
    }
}

void MainWindow::set_up_chart_controls()
{
    for (QPushButton* button : {ui->pbCancelVoltageZoom, ui->pbCancelCurrentZoom})
        button->setEnabled(false);
    {
        // Nothing is chosen yet: there is no zoom to drop.
        const QSignalBlocker blocker(ui->cbBottomChart);
        ui->cbBottomChart->addItems(choices());
    }
    for (QWidget* control : QList<QWidget*>{ui->pbCancelVoltageZoom, ui->cbSmoothVoltageChart}) {
        control->setParent(voltage_chart_box);
        control->adjustSize();
    }
    for (QWidget* control :
         QList<QWidget*>{ui->pbCancelCurrentZoom, ui->cbSmoothCurrentChart, ui->cbBottomChart}) {
        control->setParent(bottom_chart_box);
        control->adjustSize();
    }
    set_width_in_ems(ui->cbBottomChart, BOTTOM_CHART_EMS, true);
    // One pixel apart, on purpose: the width here, the right edge there.
    ui->cbSmoothVoltageChart->move(ui->pbCancelVoltageZoom->width(), 0);
    ui->cbSmoothCurrentChart->move(ui->pbCancelCurrentZoom->geometry().right(), 0);
    reposition_controls_on_bottom_chart();

    ui->chart_layout->insertWidget(0, header_box);
    ui->splitter2->addWidget(voltage_chart_box);
    ui->splitter2->addWidget(bottom_chart_box);
}

void MainWindow::set_up_charts()
{
    for (const CycleChart& row : CYCLE_CHARTS) {
        const ChartKind& kind = chart_kind(row.code);
        LineChart& chart = row.chart;
        chart.top_axis.caption = kind.title;
        chart.bottom_axis.caption = AMP_HOURS_CAPTION;
        chart.left_axis.caption = kind.caption;
        chart.grid_pen =
            QPen(QBrush(Colors::pale_gray), 1.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
        chart.bottom_axis.forced_range.min = 0;
        chart.left_axis.forced_range.min = 0;
    }
    connect(header_box, &PaintBox::sig_paint, this, &MainWindow::slot_paint_kest_logo);
    connect(voltage_chart_box, &PaintBox::sig_paint, this, &MainWindow::slot_paint_voltage_chart);
    connect(bottom_chart_box, &PaintBox::sig_paint, this, &MainWindow::slot_paint_current_chart);
    connect(&chart_refresh_timer, &QTimer::timeout, this, &MainWindow::slot_refresh_charts);
    set_chart_refresh_interval();
    chart_refresh_timer.start();
}

void MainWindow::set_chart_refresh_interval()
{
    // The file may have been edited by hand: a rate of 0 must not end the program, nor one of
    // thousands take a whole core.
    chart_refresh_timer.setInterval(1000 / qBound(1, Settings::get_chart_refresh_rate(), 1000));
}

void MainWindow::slot_refresh_charts()
{
    for (TestStation* station : qAsConst(TestStation::all_instances)) {
        // Set to what it has, a box would be painted again all the same.
        const Qt::CheckState state = common_check_state(station->cycles);
        if (station->all_cycles_checkbox.checkState() != state)
            station->all_cycles_checkbox.setCheckState(state);
    }
    voltage_chart_box->update();
    bottom_chart_box->update();
}

const ChartKind* MainWindow::kind_shown_in(const PaintBox* box) const
{
    return box == voltage_chart_box ? &chart_kind('V')
                                    : chosen_chart_kind(ui->cbBottomChart->currentText());
}

void MainWindow::slot_paint_voltage_chart(QPainter* painter, QRect rect)
{
    const ChartKind& kind = *kind_shown_in(voltage_chart_box);
    repaint_chart(painter, rect, kind.code, &cycle_chart(kind.code).chart, voltage_zoom.get(),
                  kind.style, ui->cbSmoothVoltageChart->isChecked());
}

void MainWindow::slot_paint_current_chart(QPainter* painter, QRect rect)
{
    if (const ChartKind* kind = kind_shown_in(bottom_chart_box))
        repaint_chart(painter, rect, kind->code, &cycle_chart(kind->code).chart, bottom_zoom.get(),
                      kind->style,
                      kind->can_be_smoothed() && ui->cbSmoothCurrentChart->isChecked());
}

void MainWindow::repaint_chart(QPainter* painter, QRect rect, char chart_type, LineChart* chart,
                               ZoomInterval* zoom, ChartStyle style, bool smooth)
{
    // A chart that fails stays as far as it was painted; the test under it goes on.
    try {
        // Of this call alone, on purpose: as long as there is one thread it has nobody to keep out.
        QMutex mutex;
        if (!mutex.tryLock())
            return;
        const std::unique_lock<QMutex> unlock_at_end(mutex, std::adopt_lock);
        {
            const RasterClip clip(painter);
            painter->setBrush(Qt::white);
            painter->drawRect(rect);
        }
        const QList<Series*> series = get_series_list_to_plot(chart_type);
        const double dpi = QGuiApplication::primaryScreen()->physicalDotsPerInch();
        chart->plot(series, painter, rect, dpi * GRIDLINE_INCHES, style,
                    smooth ? SMOOTHING_INTERVAL_AH : 0.0, int(dpi * DOT_RADIUS_INCHES), int(dpi),
                    false, zoom);
        const RasterClip clip(painter);
        if (style == LINES)
            plot_series_captions(painter, series);
        // Not by sender(): it goes through all that the window is connected to, thousands of boxes.
        const bool upper = chart_kind(chart_type).choice == nullptr;
        PaintBox* const box = upper ? voltage_chart_box : bottom_chart_box;
        plot_closest_chart_point(series, chart_type, box, chart, painter);
    } catch (...) {
    }
}

QList<Series*> MainWindow::get_series_list_to_plot(char chart_type)
{
    Series TestCycle::*const curve = cycle_chart(chart_type).curve;
    QList<Series*> list;
    for (TestStation* station : qAsConst(TestStation::all_instances)) {
        int number = 0;
        for (TestCycle* cycle : qAsConst(station->cycles)) {
            ++number;
            if (cycle->checkbox.checkState() != Qt::Checked)
                continue;
            Series* series = &(cycle->*curve);
            series->name = QString("%1:%2").arg(station->get_id()).arg(number);
            list.append(series);
        }
    }
    return list;
}

void plot_series_captions(QPainter* painter, const QList<Series*>& series)
{
    for (const Series* one : series) {
        if (one->points.isEmpty())
            continue;
        const QPoint pixel = one->map_point(one->points.last());
        painter->setPen(Qt::black);
        painter->setBrush(Qt::white);
        plot_text(painter, one->name, 0, Qt::AlignCenter, Qt::AlignVCenter, true, pixel.x(),
                  pixel.y());
    }
}

void MainWindow::on_cbSmoothVoltageChart_stateChanged(int)
{
    voltage_chart_box->repaint();
}

void MainWindow::on_cbSmoothCurrentChart_stateChanged(int)
{
    bottom_chart_box->repaint();
}

void MainWindow::on_cbBottomChart_currentTextChanged(const QString& text)
{
    const ChartKind* kind = chosen_chart_kind(text);
    ui->cbSmoothCurrentChart->setEnabled(kind != nullptr && kind->can_be_smoothed());
    cancel_bottom_zoom();
}

void MainWindow::reposition_controls_on_bottom_chart()
{
    static auto* const label = new QLabel("Chart to display: ", bottom_chart_box);
    if (label->parentWidget() != bottom_chart_box) {
        label->setParent(bottom_chart_box);
        label->show();
    }
    label->adjustSize();
    const QComboBox* box = ui->cbBottomChart;
    ui->cbBottomChart->move(bottom_chart_box->width() - box->width(), 0);
    label->move(box->x() - label->width(), (box->height() - label->height()) / 2);
}

void MainWindow::slot_paint_kest_logo(QPainter* painter, QRect rect)
{
    reposition_controls_on_bottom_chart();
    static const auto& logo = *new QPixmap(":/battery_tester_logo_267x67.png");
    if (rect.width() - grid_width >= logo.width())
        painter->drawPixmap(rect.width() - logo.width() - LOGO_MARGIN, 0, logo);
}
