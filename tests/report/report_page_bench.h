#pragma once

#include "report/report_page.h"
#include "support/recording_paint_device.h"

#include "charts/line_chart.h"

#include <QSize>
#include <QStringList>

#include <memory>
#include <vector>

const QSize PAGE(4900, 6400);

struct Curves
{
    Series voltage;
    Series current;
    Series resistance;
};

/** A report of a test, and the charts as the window dresses them. */
struct ReportPageBench
{
    ReportPageBench();

    /** 2 A from 25 V down, a point every hundredth of an amp-hour, a reading every half. */
    Curves& add_cycle(double amp_hours, bool ticked = true);

    /** What the page asks of a device of 600 dots per inch, which lives until the next plot. */
    const RecordingPaintDevice& plot();

    Report report;
    LineChart voltage_chart;
    LineChart resistance_chart;
    std::vector<std::unique_ptr<Curves>> owned;
    std::unique_ptr<RecordingPaintDevice> device;
};

/** What was set, "pen" for one, at each drawing of the given kind. */
QStringList settings_at(const RecordingPaintDevice& device, const QString& setting,
                        const QString& drawing);
