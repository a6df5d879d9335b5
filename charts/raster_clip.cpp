#include "charts/raster_clip.h"

#include <QPaintEngine>
#include <QPainter>

RasterClip::RasterClip(QPainter* new_painter) : painter(nullptr)
{
    const QPaintEngine* const engine = new_painter->paintEngine();
    const bool raster = engine != nullptr && engine->type() == QPaintEngine::Raster;
    if (!raster || new_painter->hasClipping())
        return;
    constexpr int far_away = 1 << 20;
    painter = new_painter;
    painter->setClipRect(QRect(-far_away, -far_away, 2 * far_away, 2 * far_away));
}

RasterClip::~RasterClip()
{
    if (painter != nullptr)
        painter->setClipping(false);
}
