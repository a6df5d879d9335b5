#pragma once

#include <QPaintDevice>
#include <QPaintEngine>
#include <QStringList>

#include <memory>

/**
 * A device that paints nothing and writes down what it was asked to: one line per drawing, preceded
 * by a line for each pen, brush, font, transform or clip that is another than at the drawing before.
 */
class RecordingPaintDevice : public QPaintDevice
{
public:
    RecordingPaintDevice(int new_width, int new_height, int new_dpi = 96);
    ~RecordingPaintDevice() override;

    QPaintEngine* paintEngine() const override;

    /** The recorded lines that begin with `word`, without it. */
    QStringList drawn(const QString& word) const;

    QStringList lines;

protected:
    int metric(PaintDeviceMetric which) const override;

private:
    int width;
    int height;
    int dpi;
    std::unique_ptr<QPaintEngine> engine;
};
