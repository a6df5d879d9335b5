#pragma once

#include <QPoint>
#include <QWidget>

class QPainter;
class QRubberBand;

/** A bare surface: whoever listens paints on it, and may be told the rectangles dragged over it. */
class PaintBox : public QWidget
{
    Q_OBJECT

public:
    explicit PaintBox(QWidget* parent);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void sig_paint(QPainter* painter, QRect rect);

    /** As wide and high as the pointer moved, unclipped; a mere click has no size at all. */
    void sig_rubberband(QRect rect);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QPoint rubberband_origin;           ///< where the drag began
    QRubberBand* rubberband = nullptr;  ///< owned; not null exactly during a drag

public:
    bool rubberband_enabled = false;  ///< the owner's to set
};
