#include "guard/line_switch.h"

#include "common/date_time.h"
#include "guard/holders.h"

#include <poll.h>

namespace
{
bool is_hung_up(QSerialPort& port)
{
    pollfd line = {port.handle(), 0, 0};
    return ::poll(&line, 1, 0) != 0;  // asked for nothing, it tells of an end only
}
}  // namespace

LineSwitch::LineSwitch(const SerialLine& serial_line, const SerialLines& lines_present,
                       bool listen_first)
    : line(serial_line), present(lines_present), listens_first(listen_first)
{
    outcome.line = line.name();
    port.setPortName(line.path);
    port.setBaudRate(QSerialPort::Baud9600, QSerialPort::AllDirections);
    // Queued: the port does not survive being closed in the middle of its own signal.
    connect(&port, &QSerialPort::readyRead, this, &LineSwitch::receive, Qt::QueuedConnection);
}

void LineSwitch::try_to_open(const QString& holder, qint64 real_now_ms)
{
    if (waits_until < 0)
        waits_until = real_now_ms + PATIENCE_MS;
    const std::optional<SerialLine> found = present.at(line.path);
    if (!found.has_value() || !(*found == line)) {
        finish(found.has_value() ? Fate::Changed : Fate::Gone);
        return;
    }
    if (holder.isEmpty() && port.open(QIODevice::ReadWrite))
        step = Step::Opened;
    else if (real_now_ms >= waits_until)
        finish(holder.isEmpty() ? Fate::Refused : Fate::Held,
               holder.isEmpty() ? port.errorString() : holder);
}

void LineSwitch::begin(const QString& holder, qint64 now_ms)
{
    if (!holder.isEmpty()) {
        finish(Fate::Held, holder);
        return;
    }
    if (!present.unchanged(line)) {
        finish(Fate::Changed);
        return;
    }
    port.clear(QSerialPort::Input);
    if (!listens_first) {
        begin_commanding(now_ms);
        return;
    }
    step = Step::Listening;
    listens_until = now_ms + LISTEN_MS;
}

void LineSwitch::begin_commanding(qint64 now_ms)
{
    step = Step::Working;
    send(course.begin(now_ms));
}

void LineSwitch::receive()
{
    if (step != Step::Listening && step != Step::Working)
        return;
    const QByteArray bytes = port.readAll();
    if (step == Step::Listening) {
        overheard += bytes;
        return;
    }
    send(course.take(bytes));
    finish_if_decided();
}

void LineSwitch::pass(qint64 now_ms)
{
    if (step != Step::Listening && step != Step::Working)
        return;
    // What has arrived comes before the time that it took: this process may have been held up.
    port.waitForReadyRead(0);
    receive();
    if (step == Step::Finished)
        return;
    if (is_hung_up(port) || !present.unchanged(line)) {
        finish(Fate::Vanished);
        return;
    }
    if (step == Step::Listening) {
        listen(now_ms);
        return;
    }
    send(course.pass(now_ms));
    finish_if_decided();
}

/** Overhears with a course of its own, which is told of no time and sends nothing. */
void LineSwitch::listen(qint64 now_ms)
{
    SwitchOff listener;
    listener.take(overheard);
    if (listener.heard)
        begin_commanding(now_ms);
    else if (now_ms >= listens_until)
        finish(Fate::Unheard);
    overheard = overheard.right(4096);
}

/** Asked before each command: the time since the last one may be long. */
bool LineSwitch::is_still_ours()
{
    const QString holder = other_holders({line}, present.roots).value(line.path);
    if (!holder.isEmpty())
        finish(Fate::Held, holder);
    else if (!present.unchanged(line))
        finish(Fate::Vanished);
    return step != Step::Finished;
}

void LineSwitch::send(const SwitchOff::Commands& commands)
{
    const bool first = course.other_lines == 0 && course.resets == 0;
    if (commands.isEmpty() || (!first && !is_still_ours()))
        return;
    for (const QByteArray& command : commands) {
        port.write(command);
        port.flush();
    }
}

void LineSwitch::finish_if_decided()
{
    if (!disobedience_told && course.other_lines >= DISOBEDIENT_LINES) {
        disobedience_told = true;
        outcome.id = course.id;
        outcome.last_state = course.last_state;
        emit sig_disobeyed();
    }
    switch (course.result) {
    case SwitchOff::Result::None:
        break;
    case SwitchOff::Result::Off:
        finish(Fate::Off);
        break;
    case SwitchOff::Result::Silent:
        finish(Fate::Silent);
        break;
    case SwitchOff::Result::NotUnderstood:
        finish(Fate::NotUnderstood);
        break;
    }
}

void LineSwitch::leave()
{
    if (!is_finished())
        finish(Fate::Left);
}

void LineSwitch::finish(Fate fate, const QString& detail)
{
    if (step == Step::Finished)
        return;
    step = Step::Finished;
    // At once: whoever starts the application again wants its port.
    port.close();
    outcome.fate = fate;
    outcome.detail = detail;
    outcome.id = course.heard ? course.id : -1;
    outcome.first_state = course.first_state;
    outcome.last_state = course.last_state;
    outcome.voltage = course.voltage;
    outcome.current = course.current;
    outcome.resets = course.resets;
    outcome.time = Time::now();
    emit sig_finished();
}

bool LineSwitch::is_waiting() const
{
    return step == Step::Waiting;
}

bool LineSwitch::is_opened() const
{
    return step == Step::Opened;
}

bool LineSwitch::is_finished() const
{
    return step == Step::Finished;
}
