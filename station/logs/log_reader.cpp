#include "station/logs/log_reader.h"

#include "station/logs/current_log_reader.h"
#include "station/logs/log_text.h"
#include "station/logs/old_log_reader.h"

#include <QTextStream>

LogGeneration log_generation(const QString& first_line)
{
    if (first_line == "Test Parameters:")
        return LogGeneration::Older;
    if (first_line == "Kestrometer Log")
        return LogGeneration::Current;
    return LogGeneration::None;
}

bool read_log(QTextStream& stream, LogSink& sink)
{
    const QString first_line = stream.readLine();
    sink.begin_log(log_generation(first_line));
    switch (log_generation(first_line)) {
    case LogGeneration::Older:
        return read_older_log(stream, sink);
    case LogGeneration::Current:
        return read_current_log(stream, sink);
    case LogGeneration::None:
        break;
    }
    sink.refuse({1, 1,
                 first_line.isEmpty() ? "an empty line in place of the mark of a data log"
                                      : quoted(first_line) + " is not the mark of a data log"});
    return false;
}
