#include "guard/notes.h"

#include <algorithm>

namespace
{
/** Whether both can be the line to one instrument: the same plug, or the same adapter. */
bool may_be_the_same(const SerialLine& line, const SerialLine& other)
{
    return line.path == other.path ||
           (!line.usb_serial.isEmpty() && line.usb_serial == other.usb_serial);
}
}  // namespace

void Notes::take(const OpenFiles& files, const QVector<SerialLine>& lines,
                 const SerialLines& present)
{
    if (files.count == 0)
        return;
    for (const SerialLine& line : qAsConst(held))
        if (!lines.contains(line) && !present.unchanged(line))
            lost << line;
    held = lines;
    const auto is_back = [&lines](const SerialLine& gone) {
        return std::any_of(lines.begin(), lines.end(),
                           [&gone](const SerialLine& line) { return may_be_the_same(gone, line); });
    };
    lost.erase(std::remove_if(lost.begin(), lost.end(), is_back), lost.end());
}
