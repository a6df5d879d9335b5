#pragma once

#include "simulator/instrument_port.h"
#include "simulator/instrument_record.h"
#include "simulator/options.h"
#include "simulator/replay.h"
#include "simulator/simulated_instrument.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

/** One run of the program: an instrument or a recording, its port and its pace. */
class SimulatorRun : public QObject
{
    Q_OBJECT

public:
    explicit SimulatorRun(const Options& chosen);
    ~SimulatorRun() override;

    /** Opens the port and prints its path. False, with the reason in `error`, if there is none. */
    bool start(QString& error);
    /** Plays this from the start instead of the simulated instrument. */
    void play(const QVector<ReplayLine>& recording);

public slots:
    /** Sets a fault at once; complains on standard error if the line makes no sense. */
    void set_fault_by_line(const QString& line);
    /** Ends the run, but not before nobody has had the port open for the time that was asked for. */
    void end_when_deserted();

signals:
    void sig_end();

private:
    void begin();
    double due_seconds() const;
    double elapsed_seconds() const;
    void send_due_lines();
    void send_next_line();
    void wait_for_next_line();
    void follow_port();
    void end_when_read();
    void note(const QByteArray& what);
    void follow_readers();

    Options options;
    SimulatedInstrument instrument;
    InstrumentPort port;
    QVector<ReplayLine> lines;  ///< empty for the simulated instrument
    qint64 lines_sent = 0;
    double pause_seconds =
        0.0;  ///< of the instrument's time, in which the process did not get to run
    QElapsedTimer since_start;
    QTimer timer;
    QTimer deserted;
    bool unwanted = false;  ///< ends as soon as it is deserted
    InstrumentRecord record;
};

/** "kest-simulator: " and the text, on standard error. */
void complain(const QString& text);
