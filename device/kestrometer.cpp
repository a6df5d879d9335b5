#include "device/kestrometer.h"

#include "common/console.h"
#include "common/date_time.h"
#include "common/message_boxes.h"
#include "common/time_span.h"
#include "device/off_at_exit.h"
#include "device/raw_traffic.h"
#include "device/reset_command.h"
#include "device/telemetry_line.h"

#include <QPointer>
#include <QTextStream>

#include <cerrno>
#include <poll.h>

namespace
{
const QString LINE_END = "\r\n";
const QByteArray ENTER_BOOTLOADER_COMMAND = "U";

/** Errors that the port repeats for as long as it is open, as when its cable is pulled. */
bool is_fatal(QSerialPort::SerialPortError error)
{
    return error == QSerialPort::ResourceError || error == QSerialPort::ReadError ||
           error == QSerialPort::WriteError;
}

bool is_hung_up(QSerialPort& port)
{
    pollfd line = {port.handle(), 0, 0};
    return ::poll(&line, 1, 0) != 0;  // asked for nothing, it tells of an end only
}

/**
 * A line that takes no more bytes for now: reported as if it were gone, but its telemetry goes on. One
 * that is gone may be reported in the same words, left over from an earlier call.
 */
bool is_only_full(QSerialPort& port)
{
    return port.errorString() == qt_error_string(EAGAIN) && !is_hung_up(port);
}
}  // namespace

Kestrometer::Kestrometer(const QString& port_name)
{
    // Queued, both of them: listeners may open a box, under which telemetry goes on, or delete this
    // object, and the port survives neither in the middle of its own signal.
    connect(&port, &QSerialPort::readyRead, this, &Kestrometer::receive_data, Qt::QueuedConnection);
    connect(&port, &QSerialPort::errorOccurred, this, &Kestrometer::slot_port_error,
            Qt::QueuedConnection);
    port.setPortName(port_name);
    port.setBaudRate(QSerialPort::Baud9600, QSerialPort::AllDirections);
    if (!port.open(QIODevice::ReadWrite))
        return;
    const int line = port.handle();
    command_off_at_exit(line);
    // Its number by heart: when the port tells that it closes, it no longer knows.
    connect(&port, &QSerialPort::aboutToClose, this, [line] { forget_at_exit(line); });
}

Kestrometer::~Kestrometer()
{
    if (port.isOpen())
        port.close();
}

QString Kestrometer::get_port_name() const
{
    return port.portName();
}

void Kestrometer::set_state(KestrometerState new_state)
{
    if (state == new_state && requested_state == new_state)
        return;
    requested_state = new_state;
    const QByteArray command = command_for_state(new_state);
    if (!command.isEmpty())
        send_command(command);
}

void Kestrometer::send_command(const QByteArray& command)
{
    if (command.isEmpty()) {
        show_error("Attempting to send zero-length command.");
        return;
    }
    if (telemetry_log != nullptr)
        log_traffic(Time::now(), hex_text(command));
    if (!port.isOpen())
        return;
    port.write(command);
    port.flush();
}

QString Kestrometer::get_status() const
{
    const qint64 age = last_data_time.secsTo(Time::now());
    return QString("%1 ago: %2").arg(format_time_span(age), last_data);
}

bool Kestrometer::get_stuck() const
{
    return stuck_count > 4;
}

bool Kestrometer::is_unresponsive() const
{
    return last_data_time.secsTo(Time::now()) >= 3;
}

void Kestrometer::enter_bootloader_mode()
{
    send_command(ENTER_BOOTLOADER_COMMAND);
}

void Kestrometer::reset()
{
    send_command(RESET_COMMAND);
}

void Kestrometer::receive_data()
{
    if (port.isOpen()) {
        // Read as a C string on purpose: what the chunk holds behind a NUL is dropped.
        receive_buffer += QString::fromUtf8(port.readAll().constData());
    }
    const QPointer<Kestrometer> alive(this);
    QString line;
    while (take_line(line)) {
        // A listener that opens a box lets this function in again; both go on from the same members.
        parse_data(line);
        if (alive.isNull())
            return;
    }
    drop_taken_text();
}

/** Cuts off the next line without its delimiter; false if the buffer holds no whole line. */
bool Kestrometer::take_line(QString& line)
{
    const int end = receive_buffer.indexOf(LINE_END, search_from);
    if (end < 0) {
        // A CR at the very end may be half a delimiter.
        search_from = qMax(line_start, receive_buffer.size() - 1);
        return false;
    }
    line = receive_buffer.mid(line_start, end - line_start);
    line_start = end + LINE_END.size();
    search_from = line_start;
    return true;
}

/** Once for all lines of a chunk: a burst of many lines is not moved up line by line. */
void Kestrometer::drop_taken_text()
{
    receive_buffer.remove(0, line_start);
    search_from -= line_start;
    line_start = 0;
}

void Kestrometer::parse_data(const QString& line)
{
    note_arrival(line);
    const int previous_id = id;
    KestrometerState reported_state = Unknown;
    if (!read_telemetry_line(line, voltage, current, id, reported_state))
        return;
    const QPointer<Kestrometer> alive(this);
    if (id != previous_id)
        emit sig_id_change();
    if (alive.isNull())
        return;
    // Copied before the signal on purpose: listeners must find both pairs equal.
    valid_voltage = voltage;
    valid_current = current;
    state = reported_state;
    emit sig_measurement();
    if (!alive.isNull())
        check_stuck();
}

/** What every line leaves behind, be it valid or not. */
void Kestrometer::note_arrival(const QString& line)
{
    const QDateTime now = Time::now();
    if (telemetry_log != nullptr)
        log_traffic(now, line);
    last_data = sanitised_text(line.trimmed());
    previous_data_time = last_data_time;
    last_data_time = now;
}

/** Repeats a command that has had no effect, at every second line; listeners have commanded before. */
void Kestrometer::check_stuck()
{
    if (requested_state == Unknown)
        return;
    if (state == requested_state) {
        stuck_count = 0;
        return;
    }
    ++stuck_count;
    if (stuck_count % 2 != 0)
        return;
    print_to_console(
        QString("Kestrometer %1 has been stuck for %2 reads, re-sending last command.\n")
            .arg(id)
            .arg(stuck_count));
    set_state(requested_state);
}

/** The stream lives for this one record, so that the record is in the file afterwards. */
void Kestrometer::log_traffic(const QDateTime& time, const QString& text)
{
    QTextStream stream(telemetry_log);
    stream << time.toString(Time::ISO_8601_DATE_TIME_FORMAT) << ' ' << text << '\n';
}

void Kestrometer::slot_port_error(QSerialPort::SerialPortError error)
{
    if (is_fatal(error) && !is_only_full(port) && port.isOpen())
        port.close();
}
