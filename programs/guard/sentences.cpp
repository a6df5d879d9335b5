#include "guard/sentences.h"

#include "common/date_time.h"

#include <cstring>

namespace
{
struct SignalWords
{
    int signal;
    const char* words;
};

constexpr SignalWords SIGNALS[] = {
    {SIGKILL, "was killed (signal 9: by somebody, or by the system because memory ran out)"},
    {SIGSEGV, "crashed (signal 11, a bad address)"},
    {SIGBUS, "crashed (signal 7, a bus error)"},
    {SIGABRT, "gave up (signal 6, it aborted itself)"},
    {SIGFPE, "crashed (signal 8, arithmetic)"},
    {SIGILL, "crashed (signal 4, a bad instruction)"},
    {SIGTERM, "was ended (signal 15)"},
    {SIGHUP, "was ended (signal 1, its terminal went)"},
    {SIGINT, "was ended (signal 2, Ctrl-C)"},
    {SIGQUIT, "was ended (signal 3)"},
};

QString state_words(KestrometerState state)
{
    switch (state) {
    case Off:
        return "off";
    case Charging:
        return "charging";
    case Discharging:
        return "discharging";
    case Unknown:
        break;
    }
    return "in a state that nobody knows";
}

QString instrument_on(const Outcome& outcome)
{
    return QString("Instrument %1 on %2").arg(outcome.id).arg(outcome.line);
}

QString clock_time(const QDateTime& time)
{
    return time.toString(Time::ISO_8601_TIME_FORMAT);
}

QString went_off(const Outcome& outcome)
{
    const QString readings =
        QString("%1 V, %2 A").arg(outcome.voltage, 0, 'f', 2).arg(outcome.current, 0, 'f', 1);
    const QString subject = instrument_on(outcome);
    const QString after = outcome.resets > 0 ? " It had to be reset." : "";
    if (outcome.first_state == Off)
        return QString("%1 is off: %2.%3").arg(subject, readings, after);
    return QString("%1 was still %2; it is off since %3: %4.%5")
        .arg(subject, state_words(outcome.first_state), clock_time(outcome.time), readings, after);
}

/** What a line says of the instrument that was last heard on it, if any was. */
QString last_word(const Outcome& outcome)
{
    if (outcome.id == -1)
        return "Whether its instrument is off, nobody knows.";
    return QString("%1 was last %2.").arg(instrument_on(outcome), state_words(outcome.last_state));
}

struct FateWords
{
    Fate fate;
    const char* words;  ///< %1 the line, %2 the detail, %3 the last word of its instrument
};

constexpr FateWords FATES[] = {
    {Fate::Silent, "%1 has been silent for 60 seconds. %3 Unplug the pack."},
    {Fate::NotUnderstood,
     "What speaks on %1 has sent no valid line for 60 seconds. %3 Unplug the pack."},
    {Fate::Gone, "%1 is gone, and its instrument keeps its last command. Unplug the pack."},
    {Fate::Changed, "%1 is another device now, and was told nothing. The instrument that was there "
                    "keeps its last command: unplug its pack."},
    {Fate::Held, "%1 is held by %2 and was left alone. Look whether its instrument is off, or "
                 "unplug the pack."},
    {Fate::Refused, "%1 cannot be opened (%2). %3 Unplug the pack."},
    {Fate::Vanished, "%1 vanished before its instrument was seen to be off. %3 Unplug the pack."},
    {Fate::Lost, "%1 was gone already when the program ended, and its instrument keeps its last "
                 "command. Unplug the pack."},
    {Fate::Left, "%1 was left as it is, as Ctrl-C asked. %3 Unplug the pack."},
    {Fate::Unheard, "No instrument speaks on %1; nothing was sent there."},
    {Fate::InUse, "%1 is in use by %2 and was left alone."},
    {Fate::NoPort, "%1 is no serial port of this machine."},
};

QString fate_words(Fate fate)
{
    for (const FateWords& row : FATES)
        if (row.fate == fate)
            return row.words;
    return {};
}
}  // namespace

QString Sentences::ending(const Ending& ending)
{
    for (const SignalWords& row : SIGNALS)
        if (row.signal == ending.signal)
            return row.words;
    return ending.signal != 0 ? QString("was ended by signal %1").arg(ending.signal)
                              : QString("ended with status %1").arg(ending.status);
}

QString Sentences::program_ended(const QString& program, const Ending& how,
                                 const QStringList& lines)
{
    const QString text = QString("%1 %2").arg(program, ending(how));
    if (lines.isEmpty())
        return text + " and held no instrument.";
    return QString("%1 while it held %2. Switching off what is there.").arg(text, lines.join(", "));
}

QString Sentences::program_ended_unseen(const QString& program, const Ending& how)
{
    return QString(
               "%1 %2. Nobody could see which instruments it held: look whether each is off, or "
               "unplug the packs.")
        .arg(program, ending(how));
}

QString Sentences::headline(const QString& program)
{
    return program + Time::now().toString(", yyyy-MM-dd hh:mm");
}

QString Sentences::program_ended_well(const QString& program)
{
    return program + " ended as it should; its instruments are its own affair.";
}

QString Sentences::program_started(const QString& program, pid_t process)
{
    return QString("%1 started (process %2).").arg(program).arg(process);
}

QString Sentences::line_taken(const QString& program, const QString& line)
{
    return QString("%1 holds %2.").arg(program, line);
}

QString Sentences::line_let_go(const QString& program, const QString& line)
{
    return QString("%1 no longer holds %2.").arg(program, line);
}

QString Sentences::cannot_start(const QString& program, int error)
{
    return QString("%1 cannot be started: %2.")
        .arg(program, QString::fromLocal8Bit(std::strerror(error)));
}

QString Sentences::outcome(const Outcome& outcome)
{
    if (outcome.fate == Fate::Off)
        return went_off(outcome);
    QString text = fate_words(outcome.fate);
    return text.replace("%1", outcome.line)
        .replace("%2", outcome.detail)
        .replace("%3", last_word(outcome));
}

QString Sentences::disobeyed(const Outcome& so_far)
{
    return QString(
               "%1 does not obey: told to switch off, it is still %2. Unplug the pack. It will be "
               "told again until it is off.")
        .arg(instrument_on(so_far), state_words(so_far.last_state));
}

QString Sentences::conclusion(const QVector<Outcome>& outcomes)
{
    QStringList bad;
    QStringList in_use;
    bool any_spoke = false;
    for (const Outcome& outcome : outcomes) {
        if (outcome.fate == Fate::InUse)
            in_use << outcome.line;
        else if (!outcome.is_good())
            bad << outcome.line;
        any_spoke = any_spoke || outcome.fate == Fate::Off;
    }
    if (!bad.isEmpty())
        return QString("NOT all is off: see to %1 now.").arg(bad.join(", "));
    if (!any_spoke)
        return "No instrument speaks on a free port.";
    // What somebody else has in use may well be on.
    return in_use.isEmpty() ? QString("All is off.")
                            : QString("All that spoke on a free port is off. Still in use: %1.")
                                  .arg(in_use.join(", "));
}

QString Sentences::frozen(const QString& program, int seconds, bool is_ended)
{
    const QString text = QString("%1 is frozen: for %2 seconds it has read nothing of what its "
                                 "instruments say.")
                             .arg(program)
                             .arg(seconds);
    return text + (is_ended ? " It is ended now, and its instruments are switched off."
                            : " Its instruments keep their last command. End it, and they are "
                              "switched off.");
}

QString Sentences::stopped(const QString& program)
{
    return program + " is stopped (Ctrl-Z, SIGSTOP or a debugger). Its instruments keep their last "
                     "command until it goes on or ends.";
}

QString Sentences::goes_on(const QString& program)
{
    return program + " reads its lines again.";
}

QString Sentences::waiting_for_another_guard(const QString& log_path)
{
    return QString(
               "Another kest-guard is still switching instruments off; the program starts when it "
               "is done. What it does stands in %1.")
        .arg(log_path);
}

QString Sentences::cannot_look(const QString& program)
{
    return QString("The system does not tell which serial lines %1 holds: if it dies, nothing is "
                   "switched off.")
        .arg(program);
}

QString Sentences::signal_passed_on(const QString& program, int signal)
{
    return QString("Signal %1 is passed on to %2.").arg(signal).arg(program);
}

QString Sentences::signal_had_already(const QString& program, int signal)
{
    return QString("%1 has had signal %2 itself.").arg(program).arg(signal);
}

QString Sentences::no_free_port()
{
    return "There is no free serial port.";
}

QString Sentences::interrupted_once(const QStringList& lines)
{
    return QString("Still switching off: %1. Ctrl-C once more leaves it as it is.")
        .arg(lines.join(", "));
}
