#pragma once

#include "guard/outcome.h"
#include "guard/serial_line.h"
#include "guard/switch_off.h"

#include <QObject>
#include <QSerialPort>

#include <functional>

/** One line that is being switched off: its port, opened when nobody else has it, and its course. */
class LineSwitch : public QObject
{
    Q_OBJECT

public:
    /** With `listen_first` nothing is sent before a valid line has been heard. */
    LineSwitch(const SerialLine& serial_line, const SerialLines& lines_present, bool listen_first);

    /** Tries to open the port; `holder` is whoever else has it, empty for nobody. In real time. */
    void try_to_open(const QString& holder, qint64 real_now_ms);
    /** The port is open and nothing has been sent: the first command, or nothing if it has a holder. */
    void begin(const QString& holder, qint64 now_ms);
    void pass(qint64 now_ms);
    /** The operator does not want to wait. */
    void leave();

    bool is_waiting() const;
    bool is_opened() const;
    bool is_finished() const;

    SerialLine line;
    Outcome outcome;

    static constexpr qint64 PATIENCE_MS = 3000;  ///< with a port that is refused; real time
    static constexpr qint64 LISTEN_MS = 5000;
    static constexpr int DISOBEDIENT_LINES = 5;

signals:
    void sig_finished();
    void sig_disobeyed();  ///< once, when the instrument has not obeyed for a while

private:
    enum class Step
    {
        Waiting,  ///< for the port
        Opened,
        Listening,
        Working,
        Finished
    };

    bool is_still_ours();
    void begin_commanding(qint64 now_ms);
    void receive();
    void listen(qint64 now_ms);
    void send(const SwitchOff::Commands& commands);
    void finish_if_decided();
    void finish(Fate fate, const QString& detail = QString());

    const SerialLines& present;
    bool listens_first;
    QSerialPort port;
    SwitchOff course;
    Step step = Step::Waiting;
    qint64 waits_until = -1;
    qint64 listens_until = 0;
    QByteArray overheard;
    bool disobedience_told = false;
};
