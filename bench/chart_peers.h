#pragma once

#include <QList>
#include <QPointF>
#include <QSize>

#include <functional>

using Curves = QList<QList<QPointF>>;

/** Paints the curves into an image of that size, as the library does it by default. Empty if absent. */
std::function<void()> qcustomplot_painter(const Curves& curves, QSize size);
std::function<void()> qwt_painter(const Curves& curves, QSize size);
