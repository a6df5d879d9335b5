#pragma once

#include "doctor/seen.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <vector>

/** Listens to a serial port. It is opened for reading alone: not a byte goes to the instrument. */
class PortEar
{
public:
    /** Hears of each line as it comes, without its line end. */
    using LineHeard = std::function<void(const QString& line)>;

    explicit PortEar(QString path_of_port, LineHeard line_heard = {});
    ~PortEar();
    PortEar(const PortEar&) = delete;
    PortEar& operator=(const PortEar&) = delete;

    /** False, with the reason in words, if the port cannot be listened to. */
    bool open(QString& error);
    /** -1: not open, or the port is gone. */
    int descriptor() const;
    /** Takes what waits on the port. */
    void take();

    SeenSpeech speech;

private:
    void close();
    void take_lines();
    void take_line(const QString& line);

    QString path;
    LineHeard tell;
    QByteArray rest;  ///< received and not yet ended by "\r\n"
    int port = -1;
};

enum class Listening
{
    AllTheTime,
    UntilUnderstood  ///< each port until its first telemetry
};

/** Listens to all of them at once, for so many seconds at most; to a port that goes no longer. */
void listen(const std::vector<PortEar*>& ears, int seconds, Listening listening);
