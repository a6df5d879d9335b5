#include "common/frame_sides.h"

#include <QEvent>
#include <QFrame>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFrame>

namespace
{
/** What the frame itself would ask its style for. */
QStyleOptionFrame option_of(const QFrame& frame)
{
    QStyleOptionFrame option;
    option.initFrom(&frame);
    option.rect = frame.frameRect();
    option.frameShape = frame.frameShape();
    option.lineWidth = frame.lineWidth();
    option.midLineWidth = frame.midLineWidth();
    if (frame.frameShadow() == QFrame::Sunken)
        option.state |= QStyle::State_Sunken;
    else if (frame.frameShadow() == QFrame::Raised)
        option.state |= QStyle::State_Raised;
    return option;
}

void paint_sides(QFrame& frame)
{
    const QStyleOptionFrame option = option_of(frame);
    const int border = frame.frameWidth();
    const QRect outer = frame.frameRect();
    const QRect inner = outer.adjusted(border, border, -border, -border);
    const QRect sides[] = {
        {outer.left(), outer.top(), outer.width(), border},
        {outer.left(), inner.top(), border, inner.height()},
        {inner.right() + 1, inner.top(), border, inner.height()},
        {outer.left(), inner.bottom() + 1, outer.width(), border},
    };
    QPainter painter(&frame);
    for (const QRect& side : sides) {
        painter.setClipRect(side);
        frame.style()->drawControl(QStyle::CE_ShapedFrame, &option, &painter, &frame);
    }
}

/** Paints the frames that it watches, in their place. */
class SidePainter : public QObject
{
public:
    bool eventFilter(QObject* frame, QEvent* event) override
    {
        if (event->type() != QEvent::Paint)
            return false;
        paint_sides(*static_cast<QFrame*>(frame));
        return true;
    }
};
}  // namespace

void paint_by_sides(QFrame* frame)
{
    static auto& painter = *new SidePainter;
    frame->installEventFilter(&painter);
}
