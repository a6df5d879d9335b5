#pragma once

#include <QDeadlineTimer>
#include <QFile>
#include <QProcess>
#include <QSerialPort>

#include <algorithm>

constexpr int PATIENCE_MS = 60000;  // a limit for what has gone wrong; nothing waits for it to pass

inline const QByteArray OFF = "KEST\t25.20\t0.0\t25.0\t0\tID=7\tO\r\n";
inline const QByteArray DISCHARGING = "KEST\t24.45\t5.0\t25.0\t0\tID=7\tD\r\n";
// A full pack so big that its voltage does not move while a test lasts.
inline const QStringList STEADY = {"--rate",   "500", "--id",       "7",
                                   "--charge", "100", "--capacity", "100000"};

/** The program itself, and what it says. */
struct Simulator
{
    /** As a rule the program ends with this process, even if the test crashes. */
    explicit Simulator(const QStringList& arguments,
                       const QStringList& bond = {"--exit-with-stdin"})
    {
        process.start(KEST_SIMULATOR, bond + arguments);
    }
    ~Simulator()
    {
        process.closeWriteChannel();
        process.terminate();
        process.waitForFinished(PATIENCE_MS);
    }
    QString next_line()
    {
        while (!process.canReadLine() && process.waitForReadyRead(PATIENCE_MS)) {
        }
        return QString::fromLocal8Bit(process.readLine()).trimmed();
    }
    /** One line of standard error, with its line end. */
    QByteArray next_complaint()
    {
        while (!complaints.contains('\n')) {
            process.setReadChannel(QProcess::StandardError);
            const bool more = process.waitForReadyRead(PATIENCE_MS);
            complaints += process.readAllStandardError();
            process.setReadChannel(QProcess::StandardOutput);
            if (!more)
                break;
        }
        const QByteArray line = complaints.left(complaints.indexOf('\n') + 1);
        complaints.remove(0, line.size());
        return line;
    }
    void say(const QByteArray& line)
    {
        process.write(line + "\n");
        process.waitForBytesWritten(PATIENCE_MS);
    }
    /** Returns when the program has been through its event loop twice since all that came before. */
    void settle()
    {
        for (int i = 0; i < 2; ++i) {
            say("settle");
            next_complaint();
        }
    }
    bool ends_with(int status)
    {
        return (process.state() == QProcess::NotRunning || process.waitForFinished(PATIENCE_MS)) &&
               process.exitStatus() == QProcess::NormalExit && process.exitCode() == status;
    }

    QProcess process;
    QByteArray complaints;
};

/** The application's end of the line. */
struct Reader
{
    explicit Reader(const QString& path) : port(path)
    {
        port.open(QIODevice::ReadWrite);
    }
    /** Reads until `text` has come; false if it does not come. */
    bool reads(const QByteArray& text)
    {
        const QDeadlineTimer patience(PATIENCE_MS);
        int searched = 0;
        while (received.indexOf(text, searched) < 0) {
            searched = std::max(0, received.size() - text.size());
            if (patience.hasExpired() || !port.waitForReadyRead(PATIENCE_MS))
                return false;
            received += port.readAll();
        }
        return true;
    }
    void write(const QByteArray& bytes)
    {
        port.write(bytes);
        port.waitForBytesWritten(PATIENCE_MS);
    }

    QSerialPort port;
    QByteArray received;
};
