#include "recorded_texts.h"

namespace
{
/** "1 0 0 1 at 2550,900" gives the part behind "at". */
QPointF anchor_in(const QString& transform)
{
    const QString at = transform.section(" at ", 1);
    return QPointF(at.section(',', 0, 0).toDouble(), at.section(',', 1).toDouble());
}
}  // namespace

QList<RecordedText> recorded_texts(const RecordingPaintDevice& device)
{
    QList<RecordedText> texts;
    RecordedText present;
    for (const QString& line : device.lines) {
        const QString rest = line.section(' ', 1);
        if (line.startsWith("transform "))
            present.anchor = anchor_in(rest);
        if (line.startsWith("font "))
            present.font = rest;
        if (line.startsWith("text "))
            texts << RecordedText{rest.section(' ', 1), present.anchor, present.font};
    }
    return texts;
}

RecordedText recorded_text(const RecordingPaintDevice& device, const QString& text)
{
    for (const RecordedText& found : recorded_texts(device)) {
        if (found.text == text)
            return found;
    }
    return RecordedText();
}
