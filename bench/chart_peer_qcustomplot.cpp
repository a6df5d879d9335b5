#include "chart_peers.h"

#include <qcustomplot.h>

#include <QImage>

#include <memory>

std::function<void()> qcustomplot_painter(const Curves& curves, QSize size)
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
    auto image = std::make_shared<QImage>(size, QImage::Format_ARGB32_Premultiplied);
    return [plot, image]() {
        QCPPainter painter(image.get());
        plot->toPainter(&painter, image->width(), image->height());
    };
}
