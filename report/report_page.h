#pragma once

#include "report/report_layout.h"

#include <QDateTime>
#include <QList>
#include <QPixmap>
#include <QString>

class LineChart;
class QPainter;
class Series;
class StringGrid;

/** One discharge as the report sees it. No curve is owned. */
struct ReportCycle
{
    bool ticked = true;  ///< in the table and in the charts; error bars do not ask
    QDateTime start_time;
    double amp_hours = 0.0;
    double watt_hours = 0.0;
    QString resistance;  ///< mean, as "123 mΩ"
    Series* voltage_vs_amphours = nullptr;
    Series* current_vs_amphours = nullptr;
    Series* internal_resistance = nullptr;
};

/** All that the page tells. Neither chart is owned. */
struct Report
{
    QPixmap header_image;  ///< null for none
    QString battery_name;
    QString serial_number;
    QString no_data_text;       ///< in the cells of a discharge that hardly began
    QList<ReportCycle> cycles;  ///< every one of the test, oldest first
    LineChart* voltage_chart = nullptr;
    LineChart* resistance_chart = nullptr;
};

/** Writes the labels and the columns of the ticked discharges; sizes and widths are left alone. */
void fill_report_table(StringGrid& table, const Report& report);

/**
 * Draws the whole page. The resistance chart keeps the top of its scale, which takes in the error
 * bars of all discharges, on the screen too.
 */
void plot_report(QPainter* painter, const Report& report, const ReportLayout& layout);
