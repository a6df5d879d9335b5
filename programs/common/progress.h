#pragma once

#include <QElapsedTimer>
#include <QString>

/** "12 of 1000" on a terminal, once the work has taken a second; nothing in a pipe. */
class Progress
{
public:
    explicit Progress(int all);
    ~Progress();

    void step();

private:
    void show();
    void wipe();

    int all;
    int done = 0;
    bool on_terminal;
    bool shown = false;
    QElapsedTimer since_start;
    QElapsedTimer since_shown;
};
