#pragma once

#include "guard/guard_clock.h"
#include "guard/line_switch.h"

#include <QTimer>

#include <memory>
#include <vector>

/** Switches many lines off at the same time, each at its own pace. */
class Switching : public QObject
{
    Q_OBJECT

public:
    Switching(const SerialLines& lines_present, const GuardClock& guard_clock);

    /** Before start(). With `listen_first` nothing is sent before a valid line has been heard. */
    void add(const SerialLine& line, bool listen_first = false);
    void start();
    /** Lets go of whatever is left. */
    void leave();
    QStringList unfinished_lines() const;

signals:
    void sig_outcome(const Outcome& outcome);
    void sig_disobeyed(const Outcome& so_far);
    void sig_done();

private:
    void take_step();
    void open_ports();
    QVector<SerialLine> lines_where(bool (LineSwitch::*condition)() const) const;

    const SerialLines& present;
    GuardClock clock;
    std::vector<std::unique_ptr<LineSwitch>> lines;
    QTimer timer;
    bool done = false;
};
