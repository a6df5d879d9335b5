#include "guard/guard.h"

#include "guard/lock_files.h"
#include "guard/sentences.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <cerrno>
#include <unistd.h>

namespace
{
constexpr int LOOK_MS = 1000;
constexpr int SHORTEST_LOOK_MS = 100;
constexpr int WAIT_MS = 100;
constexpr int LOOKS_IN_A_GAP = 5;
constexpr int PASS_ON_AFTER_MS = 1000;

enum ExitStatus
{
    CANNOT_RUN = 126,
    NOT_FOUND = 127
};

QVector<dev_t> terminals_of_this_process(const SystemRoots& roots)
{
    QVector<dev_t> terminals;
    for (const OpenDevice& file : open_files_of(::getpid(), roots).devices)
        terminals << file.device;
    return terminals;
}

qint64 gap_ms(const GuardClock& clock, double speed)
{
    return qint64(LOOKS_IN_A_GAP * clock.real_ms(LOOK_MS, SHORTEST_LOOK_MS) * speed);
}
}  // namespace

Guard::Guard(const GuardOptions& guard_options, const QByteArrayList& program_words,
             const SignalHeritage& signal_heritage)
    : options(guard_options),
      words(program_words),
      program(QFileInfo(QString::fromLocal8Bit(program_words.first())).fileName()),
      heritage(signal_heritage),
      clock(guard_options.speed),
      teller(state_folder()),
      lock(state_folder()),
      signal_reader(signal_heritage.descriptor),
      freeze_guard(guard_options.frozen_seconds, gap_ms(clock, guard_options.speed)),
      not_lines(terminals_of_this_process(lines.roots))
{
    connect(&signal_reader, &SignalReader::sig_signal, this, &Guard::take_signal);
    connect(&waiting, &QTimer::timeout, this, &Guard::wait_for_other_guards);
    connect(&looking, &QTimer::timeout, this, &Guard::look);
    passing_on.setSingleShot(true);
    connect(&passing_on, &QTimer::timeout, this, &Guard::pass_on_what_came);
}

void Guard::start()
{
    waiting.start(WAIT_MS);
    wait_for_other_guards();
}

void Guard::wait_for_other_guards()
{
    if (lock.is_held_by_another()) {
        // Not at the first look: another guard that starts may just be looking, too.
        if (++looks_at_lock == 2)
            tell_everywhere(Sentences::waiting_for_another_guard(teller.log_path()));
        return;
    }
    waiting.stop();
    start_program();
}

void Guard::start_program()
{
    const int error = child.start(words, heritage);
    if (error != 0) {
        teller.tell(Sentences::cannot_start(program, error));
        QCoreApplication::exit(error == ENOENT ? NOT_FOUND : CANNOT_RUN);
        return;
    }
    teller.note(Sentences::program_started(program, child.id));
    const dev_t terminal = controlling_terminal_of(child.id, lines.roots);
    if (terminal != 0)
        not_lines << terminal;
    looking.start(clock.real_ms(LOOK_MS, SHORTEST_LOOK_MS));
    look();
}

void Guard::look()
{
    lines.look_again();
    const OpenFiles files = open_files_of(child.id, lines.roots);
    note_blindness(files);
    const QVector<SerialLine> before = notes.held;
    notes.take(files, lines.among(files, not_lines), lines);
    for (const int number : {SIGTERM, SIGHUP})
        caught[number] = caught[number] || catches_signal(child.id, number, lines.roots);
    // Behind all that was looked up: who reads it may act on it.
    note_changes(before);
    look_for_freezing(files);
}

void Guard::note_blindness(const OpenFiles& files)
{
    const bool sees = files.readable || is_ending(child.id, lines.roots);
    if (blind || (sees && lines.can_be_told()))
        return;
    blind = true;
    tell_everywhere(Sentences::cannot_look(program));
}

void Guard::note_changes(const QVector<SerialLine>& before) const
{
    for (const SerialLine& line : notes.held)
        if (!before.contains(line))
            teller.note(Sentences::line_taken(program, line.name()));
    for (const SerialLine& line : before)
        if (!notes.held.contains(line))
            teller.note(Sentences::line_let_go(program, line.name()));
}

void Guard::look_for_freezing(const OpenFiles& files)
{
    const char state = state_of_process(child.id, lines.roots);
    QString sentence;
    switch (freeze_guard.look(child, files, notes.held, state, clock.now_ms())) {
    case FreezeGuard::News::None:
        return;
    case FreezeGuard::News::Recovered:
        teller.note(Sentences::goes_on(program));
        return;
    case FreezeGuard::News::Stopped:
        sentence = Sentences::stopped(program);
        break;
    case FreezeGuard::News::Frozen:
        sentence = Sentences::frozen(program, options.frozen_seconds, options.kill_frozen);
        if (options.kill_frozen)
            child.send(SIGKILL);
        break;
    }
    tell_everywhere(sentence);
}

void Guard::take_signal(int number, bool by_system)
{
    Ending ending;
    if (number == SIGCHLD) {
        if (child.has_ended(ending))
            end_with_program(ending);
        return;
    }
    const bool interrupts = number == SIGINT || number == SIGQUIT;
    if (run != nullptr && interrupts)
        run->interrupt();
    else if (waiting.isActive())
        QCoreApplication::exit(128 + number);
    else if (run == nullptr && !interrupts && !by_system)
        pass_on_later(number);
}

/**
 * A moment later, as whoever ends a whole session sends the signal to the program too: a second one
 * of a kind would cut its closing short.
 */
void Guard::pass_on_later(int number)
{
    ++asked[number];
    to_pass_on << number;
    if (!passing_on.isActive())
        passing_on.start(clock.real_ms(PASS_ON_AFTER_MS, SHORTEST_LOOK_MS));
}

void Guard::pass_on_what_came()
{
    for (const int number : qAsConst(to_pass_on))
        pass_on(number);
    to_pass_on.clear();
}

void Guard::pass_on(int number)
{
    if (run != nullptr || !child.is_running())
        return;
    // The application hears of the first signal of a kind, and leaves the second to the system.
    const bool has_heard = caught.value(number) && !catches_signal(child.id, number, lines.roots);
    if (has_heard && asked[number] == 1) {
        teller.note(Sentences::signal_had_already(program, number));
        return;
    }
    teller.note(Sentences::signal_passed_on(program, number));
    child.send(number);
}

void Guard::end_with_program(const Ending& ending)
{
    looking.stop();
    if (ending.well()) {
        teller.note(Sentences::program_ended_well(program));
        QCoreApplication::exit(ending.exit_status());
        return;
    }
    switch_off(ending);
}

void Guard::switch_off(const Ending& ending)
{
    const QVector<SerialLine> to_switch_off = lines_to_switch_off();
    QStringList names;
    for (const SerialLine& line : to_switch_off + notes.lost)
        names << line.name();
    if (names.isEmpty()) {
        tell_that_nothing_was_held(ending);
        QCoreApplication::exit(ending.exit_status());
        return;
    }
    lock.hold();
    run = std::make_unique<SwitchingRun>(lines, clock, teller, Sentences::headline(program));
    connect(run.get(), &SwitchingRun::sig_done, this, [this, ending] {
        lock.release();
        QCoreApplication::exit(ending.exit_status());
    });
    run->tell(Sentences::program_ended(program, ending, names));
    for (const SerialLine& line : to_switch_off)
        run->add(line);
    for (const SerialLine& line : qAsConst(notes.lost)) {
        Outcome outcome;
        outcome.line = line.name();
        run->take_outcome(outcome);
    }
    run->start();
}

void Guard::tell_that_nothing_was_held(const Ending& ending) const
{
    if (blind)
        tell_everywhere(Sentences::program_ended_unseen(program, ending));
    else
        teller.tell(Sentences::program_ended(program, ending, {}));
}

/** Also to whoever has started the program from a menu and sees neither terminal nor log. */
void Guard::tell_everywhere(const QString& sentence) const
{
    teller.tell(sentence);
    teller.show_on_desktop(Sentences::headline(program), sentence);
}

/** Those noted, and one that was opened between the last look and the end: its lock file tells. */
QVector<SerialLine> Guard::lines_to_switch_off() const
{
    QVector<SerialLine> chosen = notes.held;
    QStringList noted;
    for (const SerialLine& line : notes.held + notes.lost)
        noted << line.path;
    // What has been noted stands as it was then: the lock knows the name alone.
    for (const SerialLine& line : lines_locked_by(child.id, child.start_time, lines))
        if (!noted.contains(line.path) && !not_lines.contains(line.device))
            chosen << line;
    return chosen;
}
