#pragma once

#include "charts/series.h"

#include <QString>

/** Width of the buckets of a smoothed curve, on the screen as on paper. */
inline constexpr double SMOOTHING_INTERVAL_AH = 0.2;

/** Of the bottom axis, whatever the chart. */
inline constexpr char AMP_HOURS_CAPTION[] = "Amp-Hours (Ah)";

/** What a chart of discharges is, wherever it is drawn. All texts are UTF-8. */
struct ChartKind
{
    char code;            ///< its name in calls
    const char* title;    ///< above the chart
    const char* caption;  ///< of the left axis
    const char* unit;     ///< of the left axis
    ChartStyle style;
    const char* choice;  ///< text in the box that chooses the lower chart; null for the upper one

    /** Dots are never averaged. */
    constexpr bool can_be_smoothed() const
    {
        return style == LINES;
    }
};

// With the ohm sign, U+2126, and not with the letter.
// clang-format off
inline constexpr ChartKind CHART_KINDS[] = {
    // code, title, caption, unit, style, choice
    {'V', "Voltage vs. Amp-Hours",             "Voltage (V)",              "V",  LINES, nullptr},
    {'I', "Current vs. Amp-Hours",             "Current (A)",              "A",  LINES, "Current"},
    {'R', "Internal Resistance vs. Amp-Hours", "Internal Resistance (mΩ)", "mΩ", DOTS,  "RBatt"},
};
// clang-format on

/** The row of a code; the last one for a code that nobody has. */
const ChartKind& chart_kind(char code);

/** The kind that the box's text chooses; null if there is none. */
const ChartKind* chosen_chart_kind(const QString& choice);
