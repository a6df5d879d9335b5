#pragma once

#include <QList>
#include <QPointF>
#include <QSize>

#include <functional>

using Curves = QList<QList<QPointF>>;

/** A library's plot of the curves, as it is by default. Both are empty where it is absent. */
struct Peer
{
    std::function<void()> paint_image;   ///< into an image of the plot's size
    std::function<void()> paint_window;  ///< in a window that is shown, at once
};

Peer qcustomplot_peer(const Curves& curves, QSize size);
Peer qwt_peer(const Curves& curves, QSize size);
