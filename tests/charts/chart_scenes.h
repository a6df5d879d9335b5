#pragma once

#include "charts/line_chart.h"
#include "support/recording_paint_device.h"

#include <QImage>

#include <memory>
#include <vector>

const QRect RECT(0, 0, 600, 300);

/** A chart in the program's dress, and its curves. */
struct ChartBench
{
    ChartBench();

    Series& add(const QColor& colour = Qt::black);

    void plot(QPainter* painter, QRect rect = RECT);

    /** What plotting asks of a device; the device lives as long as the bench, or until the next. */
    const RecordingPaintDevice& record(QRect rect = RECT);

    QImage image(QRect rect = RECT);

    LineChart chart;
    std::unique_ptr<RecordingPaintDevice> device;
    std::vector<std::unique_ptr<Series>> owned;
    QList<Series*> series;
    ChartStyle style = LINES;
    double interval = 0.0;
    bool print = false;
    ZoomInterval* zoom = nullptr;
    ZoomInterval zoom_interval;
};

/** Sets up what a bench draws. */
using Scene = void (*)(ChartBench&);

struct NamedScene
{
    const char* name;
    Scene set_up;
};

extern const std::vector<NamedScene> SCENES;

void no_series(ChartBench& bench);
void one(ChartBench& bench);
void many(ChartBench& bench);
void zoomed(ChartBench& bench);
void twin_axes(ChartBench& bench);
void print_600(ChartBench& bench);
void dots(ChartBench& bench);
void no_captions(ChartBench& bench);

QRect plot_area_of(const LineChart& chart);
