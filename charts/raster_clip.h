#pragma once

class QPainter;

/**
 * While it lives, a painter of pixels without a clip has one that cuts nothing. Lines and rectangles
 * come out the same, pixel for pixel, at a tenth of the cost: without any clip rectangle the raster
 * engine takes its general way for each of them. Other devices are left alone.
 */
class RasterClip
{
public:
    explicit RasterClip(QPainter* new_painter);
    ~RasterClip();
    RasterClip(const RasterClip&) = delete;
    RasterClip& operator=(const RasterClip&) = delete;

private:
    QPainter* painter;  ///< not owned; null if there is nothing to undo
};
