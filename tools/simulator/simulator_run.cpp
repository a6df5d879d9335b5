#include "simulator/simulator_run.h"

#include "simulator/faults.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

namespace
{
// After a longer halt of the process (a suspended machine) the lines missed are not made up for.
constexpr double LONGEST_CATCH_UP = 1.0;
// A day: far below what an int of milliseconds holds.
constexpr double LONGEST_WAIT_MS = 86400000.0;
constexpr int LAST_READ_MS = 20;
}  // namespace

void complain(const QString& text)
{
    const QByteArray bytes = "kest-simulator: " + text.toLocal8Bit() + '\n';
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
}

SimulatorRun::SimulatorRun(const Options& chosen)
    : options(chosen), instrument(chosen.pack(), int(chosen.id)), port(chosen.link)
{
    instrument.letter_delay = int(options.delay);
    QString error;
    for (const QString& fault : options.faults)
        set_fault(instrument, fault, error);
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    connect(&timer, &QTimer::timeout, this, &SimulatorRun::send_due_lines);
    deserted.setSingleShot(true);
    connect(&deserted, &QTimer::timeout, this, &SimulatorRun::sig_end);
    connect(&port, &InstrumentPort::sig_reader_came, this, [this] {
        note("opened");
        follow_readers();
        begin();
    });
    connect(&port, &InstrumentPort::sig_readers_left, this, [this] {
        note("closed");
        follow_readers();
    });
    connect(&port, &InstrumentPort::sig_received, this, [this](const QByteArray& bytes) {
        instrument.receive(bytes);
        note(bytes.toHex().toUpper());
    });
}

SimulatorRun::~SimulatorRun()
{
    note("ended");
}

void SimulatorRun::note(const QByteArray& what)
{
    record.add(lines_sent, state_letter(instrument.state), what);
}

void SimulatorRun::play(const QVector<ReplayLine>& recording)
{
    lines = recording;
    // Whoever looks for a fault in a recording wants all of it.
    if (!lines.isEmpty())
        port.queue_limit = std::numeric_limits<qint64>::max();
    if (options.rate_given)
        set_steady_pace(lines, options.rate);
}

bool SimulatorRun::start(QString& error)
{
    if (!record.open(options.record, error))
        return false;
    // Opened even if it is to vanish at once: the caller waits for the path.
    if (!port.open(error))
        return false;
    std::printf("%s\n", qPrintable(port.path()));
    std::fflush(stdout);
    follow_port();
    // A recording waits for whoever is to see it; an instrument talks to nobody.
    if (lines.isEmpty() || port.has_reader())
        begin();
    return true;
}

void SimulatorRun::begin()
{
    if (since_start.isValid())
        return;
    since_start.start();
    wait_for_next_line();
}

void SimulatorRun::set_fault_by_line(const QString& line)
{
    QString error = "A recording has no faults.";
    if (!lines.isEmpty() || !set_fault(instrument, line, error))
        complain(error);
    follow_port();
}

double SimulatorRun::elapsed_seconds() const
{
    return double(since_start.nsecsElapsed()) * 1e-9 * options.speed - pause_seconds;
}

double SimulatorRun::due_seconds() const
{
    if (lines.isEmpty())
        return double(lines_sent + 1) / options.rate;
    return lines_sent < lines.size() ? lines[int(lines_sent)].offset : INFINITY;
}

void SimulatorRun::send_due_lines()
{
    const double missed = elapsed_seconds() - due_seconds() - LONGEST_CATCH_UP * options.speed;
    pause_seconds += std::isfinite(missed) ? std::max(0.0, missed) : 0.0;
    const double now = elapsed_seconds();
    while (due_seconds() <= now)
        send_next_line();
    wait_for_next_line();
}

void SimulatorRun::send_next_line()
{
    if (!lines.isEmpty()) {
        port.send(lines[int(lines_sent++)].text + "\r\n", false);
        return;
    }
    // However late this process is: the next line knows what the instrument has been told.
    port.catch_up();
    ++lines_sent;
    const QByteArray wire = instrument.advance(1.0 / options.rate);
    follow_port();
    port.send(wire, instrument.splits_bytes());
}

void SimulatorRun::wait_for_next_line()
{
    const double seconds = (due_seconds() - elapsed_seconds()) / options.speed;
    if (std::isfinite(seconds))
        timer.start(int(std::clamp(std::ceil(seconds * 1000.0), 0.0, LONGEST_WAIT_MS)));
    else if (options.exit_at_end)
        end_when_read();
}

void SimulatorRun::follow_port()
{
    if (!instrument.port_present()) {
        port.close();
        return;
    }
    QString error;
    if (port.is_open())
        return;
    if (!port.open(error)) {
        // Tried again with the next line.
        complain(error);
        return;
    }
    std::printf("%s\n", qPrintable(port.path()));
    std::fflush(stdout);
}

void SimulatorRun::end_when_deserted()
{
    unwanted = true;
    if (options.linger > 0.0)
        follow_readers();
    else
        emit sig_end();
}

void SimulatorRun::follow_readers()
{
    if (port.has_reader())
        deserted.stop();
    else if (unwanted)
        deserted.start(int(options.linger * 1000.0));
}

void SimulatorRun::end_when_read()
{
    // The port takes with it what nobody has read yet.
    if (port.all_read())
        emit sig_end();
    else
        QTimer::singleShot(LAST_READ_MS, this, &SimulatorRun::end_when_read);
}
