#pragma once

#include "station/logs/log_sink.h"

#include <memory>

class QTextStream;

/**
 * Reads a current data log behind its first line into `sink`, whose test has no cycle yet.
 *
 * @return false at the first line that cannot be accounted for
 */
bool read_current_log(QTextStream& stream, LogSink& sink);

/**
 * The same reader for a log that is still being written: takes one line after the other, the first
 * one behind the mark at first.
 */
class CurrentLogPass
{
public:
    explicit CurrentLogPass(LogSink& sink);
    ~CurrentLogPass();

    /** False for a line that cannot be accounted for. What follows may be taken all the same. */
    bool take_line(const QString& text);

private:
    class Pass;
    std::unique_ptr<Pass> pass;
};
