#pragma once

#include <QtGlobal>

#include <functional>

/** "12 of 1000, 340 MB read" on a terminal, once the work has taken a second; nothing in a pipe. */
class Progress
{
public:
    /** @param clock milliseconds since any moment; the system's if there is none */
    explicit Progress(int steps, std::function<qint64()> clock = nullptr);
    ~Progress();

    /** Another one is done; what was shown gives way to what may be told of it. */
    void step();
    /** To be called now and then. */
    void look(qint64 bytes_read);

private:
    void wipe();

    int all;
    int done = 0;
    bool on_terminal;
    bool shown = false;
    std::function<qint64()> now;
    qint64 start;
    qint64 shown_at;
};
