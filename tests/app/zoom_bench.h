#pragma once

#include "chart_window.h"

#include "app/main_window.h"
#include "charts/paint_box.h"
#include "station/test_station.h"

#include <QComboBox>
#include <QPushButton>
#include <QtTest>

inline LineChart& upper_chart()
{
    return TestStation::voltage_vs_amphours_chart;
}

/** Ten volts falling over ten amp-hours. */
const QList<QPointF> WIDE = {{0.0, 10.0}, {5.0, 5.0}, {10.0, 0.0}};

/** A window with one curve, painted with its layout settled. */
struct ZoomBench : ChartWindow
{
    ZoomBench()
    {
        // Wide enough that gridlines lie close beside whatever is marked.
        window->showNormal();
        window->resize(1800, 1300);
        cycle = add_cycle(add_station(4), WIDE);
        window->slot_refresh_charts();
        settle();
    }

    QPushButton* cancel_upper() const
    {
        return widget<QPushButton>("pbCancelVoltageZoom");
    }

    QPushButton* cancel_lower() const
    {
        return widget<QPushButton>("pbCancelCurrentZoom");
    }

    void choose(const char* chart) const
    {
        widget<QComboBox>("cbBottomChart")->setCurrentText(chart);
    }

    /** Ranges of the upper chart as it is painted now. */
    QList<double> upper_ranges() const
    {
        return ranges(upper, upper_chart());
    }

    static QList<double> ranges(PaintBox* box, const LineChart& chart)
    {
        box->repaint();
        return {chart.bottom_axis.range.min, chart.bottom_axis.range.max, chart.left_axis.range.min,
                chart.left_axis.range.max};
    }

    void verify_refused()
    {
        QCOMPARE(int(answers.seen.size()), 1);
        QCOMPARE(answers.seen[0].caption, QString("Error"));
        QCOMPARE(answers.seen[0].text, QString("Zoom limit exceeded."));
        QCOMPARE(answers.seen[0].icon, QMessageBox::Warning);
        QCOMPARE(int(answers.seen[0].buttons), int(QMessageBox::Ok));
        QVERIFY(!answers.seen[0].has_parent);
        answers.seen.clear();
    }

    TestCycle* cycle = nullptr;
};

/** A hundred pixels a unit, from pixel 100 to the right and from pixel 500 up. */
inline void pin_layout(LineChart& chart)
{
    for (Axis* axis : {&chart.bottom_axis, &chart.left_axis}) {
        axis->range.min = 0.0;
        axis->range.max = 4.0;
        axis->length = 400;
    }
    chart.bottom_axis.origin = 100;
    chart.left_axis.origin = 500;
}

/** The rectangle that a drag ends with, without the paints that a real one lets in. */
inline void report(PaintBox* box, const QRect& rect)
{
    emit box->sig_rubberband(rect);
}
