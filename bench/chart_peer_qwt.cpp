#include "chart_peers.h"

#include <QImage>
#include <QPainter>
#include <QVector>

#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_renderer.h>

#include <memory>

Peer qwt_peer(const Curves& curves, QSize size)
{
    auto plot = std::make_shared<QwtPlot>();
    plot->resize(size);
    for (const QList<QPointF>& points : curves) {
        auto* const curve = new QwtPlotCurve;  // the plot takes it
        curve->setSamples(points.toVector());
        curve->attach(plot.get());
    }
    plot->replot();
    plot->show();
    auto image = std::make_shared<QImage>(size, QImage::Format_ARGB32_Premultiplied);
    const auto paint_image = [plot, image]() {
        QPainter painter(image.get());
        QwtPlotRenderer().render(plot.get(), &painter, QRectF(image->rect()));
    };
    const auto paint_window = [plot]() {
        plot->replot();
        plot->repaint();
    };
    return {paint_image, paint_window};
}
