#include "simulator/replay.h"

#include <QDateTime>
#include <QFile>
#include <QList>

#include <algorithm>

namespace
{
constexpr int STAMP_SIZE = 19;  // "yyyy-MM-dd hh:mm:ss"

/** Seconds of the stamp at the head of `line`; false if there is none with a blank behind it. */
bool read_stamp(const QByteArray& line, qint64& seconds)
{
    if (line.size() <= STAMP_SIZE || line[STAMP_SIZE] != ' ')
        return false;
    // Taken as UTC on purpose: only differences count, and no hour of a clock change is missing there.
    QDateTime stamp = QDateTime::fromString(QString::fromLatin1(line.constData(), STAMP_SIZE),
                                            "yyyy-MM-dd hh:mm:ss");
    stamp.setTimeSpec(Qt::UTC);
    seconds = stamp.toSecsSinceEpoch();
    return stamp.isValid();
}

bool is_hexadecimal(char byte)
{
    return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'F');
}

/** "43" or "55 55 00": bytes that went the other way. */
bool is_command(const QByteArray& text)
{
    if (text.size() % 3 != 2)
        return false;
    for (int i = 0; i < text.size(); ++i)
        if (i % 3 == 2 ? text[i] != ' ' : !is_hexadecimal(text[i]))
            return false;
    return true;
}

bool is_event(const QByteArray& text)
{
    static const QList<QByteArray> beginnings = {
        "Switching to phase ",
        "botched IR test, ",
        "Attempting to reset the Kestrometer ",
    };
    return std::any_of(beginnings.begin(), beginnings.end(),
                       [&text](const QByteArray& beginning) { return text.startsWith(beginning); });
}

/** Cuts at LF. Where every line ends in CR LF, the CR belongs to the line end; else it is content. */
QList<QByteArray> cut_lines(const QByteArray& content)
{
    QList<QByteArray> lines = content.split('\n');
    if (lines.last().isEmpty())
        lines.removeLast();
    const bool windows = std::all_of(lines.begin(), lines.end(),
                                     [](const QByteArray& line) { return line.endsWith('\r'); });
    if (windows)
        for (QByteArray& line : lines)
            line.chop(1);
    return lines;
}

/** Lines of one second got the same offset: the i-th of n moves on by i/n. */
void spread_within_seconds(QVector<ReplayLine>& lines)
{
    for (int first = 0; first < lines.size();) {
        int end = first + 1;
        while (end < lines.size() && lines[end].offset == lines[first].offset)
            ++end;
        for (int i = first + 1; i < end; ++i)
            lines[i].offset += double(i - first) / (end - first);
        first = end;
    }
}

QVector<ReplayLine> parse_event_log(const QList<QByteArray>& raw_lines)
{
    QVector<ReplayLine> lines;
    qint64 last_stamp = 0;
    double offset = 0.0;
    bool in_telemetry = false;
    for (const QByteArray& raw : raw_lines) {
        qint64 stamp = 0;
        if (!read_stamp(raw, stamp)) {
            // The line on the wire had a lone LF in it, which has cut it in two here.
            if (in_telemetry)
                lines.last().text += '\n' + raw;
            continue;
        }
        const QByteArray text = raw.mid(STAMP_SIZE + 1);
        in_telemetry = !is_event(text) && !is_command(text);
        if (!in_telemetry)
            continue;
        // A clock that was set back must not bring the lines out of order.
        offset += lines.isEmpty() ? 0.0 : double(std::max<qint64>(0, stamp - last_stamp));
        last_stamp = stamp;
        lines.append({offset, text});
    }
    spread_within_seconds(lines);
    return lines;
}
}  // namespace

QVector<ReplayLine> parse_recording(const QByteArray& content)
{
    const QList<QByteArray> raw_lines = cut_lines(content);
    qint64 stamp = 0;
    if (!raw_lines.isEmpty() && read_stamp(raw_lines.first(), stamp))
        return parse_event_log(raw_lines);
    QVector<ReplayLine> lines;
    for (const QByteArray& raw : raw_lines)
        lines.append({double(lines.size()), raw});
    return lines;
}

bool read_recording(const QString& path, QVector<ReplayLine>& lines, QString& error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QString("%1 cannot be read: %2").arg(path, file.errorString());
        return false;
    }
    lines = parse_recording(file.readAll());
    if (file.error() != QFileDevice::NoError)
        error = QString("%1 cannot be read: %2").arg(path, file.errorString());
    else if (lines.isEmpty())
        error = QString("%1 holds no telemetry.").arg(path);
    return error.isEmpty();
}

void set_steady_pace(QVector<ReplayLine>& lines, double lines_per_second)
{
    for (int i = 0; i < lines.size(); ++i)
        lines[i].offset = i / lines_per_second;
}
