#pragma once

#include <QFont>
#include <QImage>
#include <QString>
#include <QStringList>

class LineChart;

/** The one font that every machine with the tests' packages has, in a form that no setting changes. */
QFont pinned_font(int points);

/** Gives a chart that font in place of its own family. */
void pin_fonts(LineChart& chart);

/**
 * Compares recorded lines with the file `name` among the tests' data.
 *
 * @return empty if they are equal; else the first difference, and where all lines were written
 */
QString difference_to_file(const QStringList& lines, const QString& name);

/** Pixels in which two images of one size differ visibly; all of them if the sizes differ. */
int differing_pixels(const QImage& a, const QImage& b);

/** What another version of the font renderer may change; a label moved by a pixel changes more. */
constexpr int TOLERATED_PIXELS = 20;

/** As difference_to_file, for an image and with the tolerance. */
QString difference_to_image(const QImage& image, const QString& name);
