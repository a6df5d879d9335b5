#include "guard/switching.h"

#include "guard/holders.h"

#include <algorithm>

namespace
{
constexpr int STEP_MS = 250;
constexpr int SHORTEST_STEP_MS = 10;
}  // namespace

Switching::Switching(const SerialLines& lines_present, const GuardClock& guard_clock)
    : present(lines_present), clock(guard_clock)
{
    connect(&timer, &QTimer::timeout, this, &Switching::take_step);
}

void Switching::add(const SerialLine& line, bool listen_first)
{
    lines.push_back(std::make_unique<LineSwitch>(line, present, listen_first));
    LineSwitch* const added = lines.back().get();
    connect(added, &LineSwitch::sig_finished, this,
            [this, added] { emit sig_outcome(added->outcome); });
    connect(added, &LineSwitch::sig_disobeyed, this,
            [this, added] { emit sig_disobeyed(added->outcome); });
}

void Switching::start()
{
    timer.start(clock.real_ms(STEP_MS, SHORTEST_STEP_MS));
    take_step();
}

void Switching::take_step()
{
    open_ports();
    for (const auto& line : lines)
        line->pass(clock.now_ms());
    const bool finished = std::all_of(lines.begin(), lines.end(),
                                      [](const auto& line) { return line->is_finished(); });
    if (!finished || done)
        return;
    done = true;
    timer.stop();
    emit sig_done();
}

/** All ports first and all commands behind them: who else has a port is looked up once for all. */
void Switching::open_ports()
{
    const QVector<SerialLine> waiting = lines_where(&LineSwitch::is_waiting);
    if (waiting.isEmpty())
        return;
    const QMap<QString, QString> holders = other_holders(waiting, present.roots);
    for (const auto& line : lines)
        if (line->is_waiting())
            line->try_to_open(holders.value(line->line.path), clock.real_now_ms());
    // Looked up again: the system lets root open a port that somebody else has just opened.
    const QMap<QString, QString> newcomers =
        other_holders(lines_where(&LineSwitch::is_opened), present.roots);
    for (const auto& line : lines)
        if (line->is_opened())
            line->begin(newcomers.value(line->line.path), clock.now_ms());
}

QVector<SerialLine> Switching::lines_where(bool (LineSwitch::*condition)() const) const
{
    QVector<SerialLine> chosen;
    for (const auto& line : lines)
        if ((line.get()->*condition)())
            chosen << line->line;
    return chosen;
}

void Switching::leave()
{
    for (const auto& line : lines)
        line->leave();
    take_step();
}

QStringList Switching::unfinished_lines() const
{
    QStringList names;
    for (const auto& line : lines)
        if (!line->is_finished())
            names << line->line.name();
    return names;
}
