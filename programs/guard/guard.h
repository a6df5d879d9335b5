#pragma once

#include "guard/child_process.h"
#include "guard/freeze_guard.h"
#include "guard/guard_clock.h"
#include "guard/guard_options.h"
#include "guard/notes.h"
#include "guard/switching_lock.h"
#include "guard/switching_run.h"
#include "guard/teller.h"
#include "programs/common/signal_reader.h"

#include <QMap>
#include <QObject>
#include <QTimer>

#include <memory>

/** The guard of one program, from its start to the last of its instruments. */
class Guard : public QObject
{
    Q_OBJECT

public:
    Guard(const GuardOptions& guard_options, const QByteArrayList& program_words,
          const SignalHeritage& signal_heritage);

    /** Ends the event loop with the status that the guard is to end with. */
    void start();

private:
    void wait_for_other_guards();
    void start_program();
    void look();
    void note_blindness(const OpenFiles& files);
    void note_changes(const QVector<SerialLine>& before) const;
    void look_for_freezing(const OpenFiles& files);
    void take_signal(int number, bool by_system);
    void pass_on_later(int number);
    void pass_on_what_came();
    void pass_on(int number);
    void end_with_program(const Ending& ending);
    void switch_off(const Ending& ending);
    void tell_that_nothing_was_held(const Ending& ending) const;
    void tell_everywhere(const QString& sentence) const;
    QVector<SerialLine> lines_to_switch_off() const;

    GuardOptions options;
    QByteArrayList words;
    QString program;  ///< its name, for people
    const SignalHeritage& heritage;
    GuardClock clock;
    SerialLines lines;
    Teller teller;
    SwitchingLock lock;
    SignalReader signal_reader;
    QTimer waiting;
    int looks_at_lock = 0;
    QTimer looking;
    QTimer passing_on;
    ChildProcess child;
    Notes notes;
    FreezeGuard freeze_guard;
    QVector<dev_t> not_lines;  ///< terminals that people sit at
    QVector<int> to_pass_on;   ///< signals
    QMap<int, int> asked;      ///< how often, by signal
    QMap<int, bool> caught;    ///< signals that the program has once had a handler for
    bool blind = false;        ///< the system does not tell what the program holds
    std::unique_ptr<SwitchingRun> run;
};
