#pragma once

#include <QByteArray>
#include <QTemporaryFile>

/** Collects what the process writes to its standard output while the object lives. */
class ConsoleCapture
{
public:
    ConsoleCapture();
    ~ConsoleCapture();
    ConsoleCapture(const ConsoleCapture&) = delete;
    ConsoleCapture& operator=(const ConsoleCapture&) = delete;

    /** All that has been written so far; nothing is flushed here that the writer has not flushed. */
    QByteArray text();

private:
    QTemporaryFile file;
    int real_output = -1;
};
