#pragma once

#include "device/kestrometer_state.h"

#include <QByteArray>
#include <QDateTime>
#include <QIODevice>
#include <QObject>
#include <QSerialPort>
#include <QString>

/** One instrument on its serial port: its latest readings, and the commands that switch it. */
class Kestrometer : public QObject
{
    Q_OBJECT

public:
    /** Opens the port; one that cannot be opened is never heard of, like a silent instrument. */
    explicit Kestrometer(const QString& port_name);
    ~Kestrometer() override;

    QString get_port_name() const;
    /** Commands a state, unless it is both reported and commanded already. */
    void set_state(KestrometerState new_state);
    /** Writes these bytes as they are; a port that is not open swallows them. */
    void send_command(const QByteArray& command);
    /** Age and text of the last line: "05m 09s ago: x\t48.02\t..." */
    QString get_status() const;
    /** Whether five valid lines in a row have shown another state than the one commanded. */
    bool get_stuck() const;
    /** Whether the last line is three seconds old or older. */
    bool is_unresponsive() const;
    void enter_bootloader_mode();
    /** Gets the instrument out of its bootloader and restarts it. */
    void reset();

    QString receive_buffer;  ///< text received and not yet cut into lines
    QSerialPort port;
    KestrometerState requested_state = Unknown;  ///< last state commanded
    int stuck_count = 0;  ///< valid lines in a row with a state other than `requested_state`
    QString last_data;    ///< last line received, valid or not, trimmed and sanitised
    QIODevice* telemetry_log = nullptr;  ///< raw traffic goes here; not owned; null for none
    QDateTime last_data_time;            ///< of the last line received, valid or not
    double voltage = 0.0;                ///< volts of the line being parsed or parsed last
    double current = 0.0;                ///< amps, likewise
    QDateTime previous_data_time;        ///< `last_data_time` as it stood before the last line
    double valid_voltage = 0.0;          ///< volts of the last valid line
    double valid_current = 0.0;          ///< amps of the last valid line
    int id = -1;                         ///< number of the instrument; -1 while it is not known
    KestrometerState state = Off;        ///< reported by the last valid line

signals:
    void sig_measurement();  ///< a valid line has been taken over
    void sig_id_change();    ///< before sig_measurement: it brought another `id`

private slots:
    void receive_data();
    void slot_port_error(QSerialPort::SerialPortError error);

private:
    bool take_line(QString& line);
    void drop_taken_text();
    void parse_data(const QString& line);
    void note_arrival(const QString& line);
    void check_stuck();
    void log_traffic(const QDateTime& time, const QString& text);

    int line_start = 0;   ///< in receive_buffer: behind the last line taken
    int search_from = 0;  ///< in receive_buffer: no line ends before this place
};
