#include "chart_peers.h"

#include <qcustomplot.h>

#include <QImage>

#include <memory>

Peer qcustomplot_peer(const Curves& curves, QSize size)
{
    auto plot = std::make_shared<QCustomPlot>();
    plot->resize(size);
    for (const QList<QPointF>& points : curves) {
        QVector<double> x;
        QVector<double> y;
        for (const QPointF& point : points) {
            x << point.x();
            y << point.y();
        }
        plot->addGraph()->setData(x, y, true);
    }
    plot->rescaleAxes();
    plot->show();
    auto image = std::make_shared<QImage>(size, QImage::Format_ARGB32_Premultiplied);
    const auto paint_image = [plot, image]() {
        QCPPainter painter(image.get());
        plot->toPainter(&painter, image->width(), image->height());
    };
    return {paint_image, [plot]() {
                plot->replot(QCustomPlot::rpImmediateRefresh);
            }};
}
