#include "charts/paint_box.h"

#include <QMouseEvent>
#include <QPainter>
#include <QRubberBand>

#include <algorithm>

namespace
{

/** One less at right and bottom on purpose: the size is the distance between the two points. */
QRect dragged_rect(const QPoint& from, const QPoint& to)
{
    const QPoint top_left(std::min(from.x(), to.x()), std::min(from.y(), to.y()));
    const QPoint bottom_right(std::max(from.x(), to.x()) - 1, std::max(from.y(), to.y()) - 1);
    return QRect(top_left, bottom_right);
}

}  // namespace

PaintBox::PaintBox(QWidget* parent) : QWidget(parent)
{
}

QSize PaintBox::sizeHint() const
{
    return QSize(200, 200);
}

QSize PaintBox::minimumSizeHint() const
{
    return QSize(100, 100);
}

void PaintBox::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    emit sig_paint(&painter, QRect(0, 0, width(), height()));
}

void PaintBox::mousePressEvent(QMouseEvent* event)
{
    if (!rubberband_enabled || rubberband != nullptr)
        return;
    rubberband = new QRubberBand(QRubberBand::Rectangle, this);
    rubberband_origin = event->pos();
    rubberband->setGeometry(QRect(rubberband_origin, rubberband_origin));
    rubberband->show();
}

void PaintBox::mouseMoveEvent(QMouseEvent* event)
{
    if (rubberband != nullptr)
        rubberband->setGeometry(dragged_rect(rubberband_origin, event->pos()));
}

void PaintBox::mouseReleaseEvent(QMouseEvent* event)
{
    if (rubberband == nullptr)
        return;
    delete rubberband;
    rubberband = nullptr;
    emit sig_rubberband(dragged_rect(rubberband_origin, event->pos()));
}
