#pragma once

class QFrame;

/**
 * Has a frame with a border painted side by side from now on, pixel for pixel as before. A ground of
 * its own below a label is cut out of the frame around it; in what is left, the raster engine draws a
 * border pixel by pixel, and in the rectangle of one side line by line.
 */
void paint_by_sides(QFrame* frame);
