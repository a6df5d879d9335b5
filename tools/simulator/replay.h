#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

/** One line of a recording, without line end, and when it came. */
struct ReplayLine
{
    double offset = 0.0;  ///< seconds since the first line
    QByteArray text;
};

/**
 * The telemetry of a recording.
 *
 * An event log has a time stamp before each line; phase changes, other events and commands sent are
 * left out, and what has no time stamp goes on with the line above it. Lines that share a second are
 * spread evenly over it. Any other file is taken line by line, one a second.
 *
 * @return false, with the reason in `error`, if the file cannot be read or holds no line
 */
bool read_recording(const QString& path, QVector<ReplayLine>& lines, QString& error);

/** The same from the file's content; empty if there is no line in it. */
QVector<ReplayLine> parse_recording(const QByteArray& content);

/** Gives each line its place at a steady pace instead of its own. */
void set_steady_pace(QVector<ReplayLine>& lines, double lines_per_second);
