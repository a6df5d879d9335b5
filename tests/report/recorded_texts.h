#pragma once

#include "support/recording_paint_device.h"

#include <QList>
#include <QPointF>
#include <QString>

/** A text as it was drawn, and the anchor that it was drawn at. */
struct RecordedText
{
    QString text;
    QPointF anchor;
    QString font;  ///< as the device writes it down
};

QList<RecordedText> recorded_texts(const RecordingPaintDevice& device);

/** The first text of these words. A null one if there is none. */
RecordedText recorded_text(const RecordingPaintDevice& device, const QString& text);
