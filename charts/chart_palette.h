#pragma once

#include <QPalette>

/** Black on white, as the charts are on every desktop: for the box of a chart and the controls in it. */
QPalette chart_palette();
