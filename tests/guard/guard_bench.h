#pragma once

#include "instrument.h"
#include "support/test_program.h"

#include <QProcess>
#include <QTemporaryDir>

#include <csignal>
#include <memory>
#include <vector>

/** For a guard that is waited for: its seconds pass in a quarter of their time. */
const QStringList QUICK = {"--speed", "4"};

/** A guard with a program that obeys a test, and as many instruments as wanted. */
class GuardBench
{
public:
    GuardBench();
    ~GuardBench();

    Instrument& add_instrument(const QStringList& options = {});
    /** Starts the guard with a program that waits for orders. */
    bool start(const QStringList& guard_options = {});
    /** The same by way of another program, which gets the guard's command line behind its own. */
    bool start_by(const QString& other, const QStringList& arguments);
    /** Starts the guard with these arguments alone. */
    void start_with(const QStringList& arguments);
    /** Has the program hold these instruments in that state, "-" for no command at all. */
    bool hold_all(const QByteArray& letter = "D");
    void order(const QByteArray& words);
    /** Reads what the program says up to a line that begins so; the rest of that line. */
    QByteArray program_says(const QByteArray& start);
    /** Reads what the guard says up to this text; false if it never says it. */
    bool guard_says(const QByteArray& text);
    /** The log has this in it, now or soon. */
    bool log_has(const QByteArray& text) const;
    QByteArray log() const;
    void kill_program(int signal = SIGKILL) const;
    void signal_guard(int signal) const;
    /** Stops the guard between two looks: in the middle of one it has a part in what the program holds. */
    bool stop_guard_between_looks() const;
    /** Waits until the guard has ended; false if it never does. */
    bool ends();
    bool ends_with(int status);
    /** The same for a kill -9, with the word that all is off. */
    bool ends_all_off();

    QTemporaryDir folder;
    std::vector<std::unique_ptr<Instrument>> instruments;
    QProcess guard;
    pid_t program = -1;
    QByteArray program_name;  ///< its argv[0]
    QByteArray said;          ///< all that the guard said by now
    QProcessEnvironment environment;

private:
    bool hear_of_program();
    bool is_an_instrument_s(const QString& path) const;
};

/** A bench whose one instrument goes on discharging, so that its guard is switching off. */
struct SwitchingBench : GuardBench
{
    bool begin();
};

/** "is off" also of an instrument that had time for a line before it was told, and "was still discharging". */
QByteArray without_haste(const QByteArray& said);

/** Where the programs under test are; copies, if the user of the test may not enter their folder. */
QString guard_program();
QString guarded_program();

/** Runs a class of tests as the user that the environment asks for. */
template <typename Tests> int run_guard_tests(int argc, char** argv);

/** Undoes what a shell does for a job in the background, which is deaf to Ctrl-C: programs inherit it. */
void hear_all_signals();

/** Becomes an ordinary user for good if the environment asks for that and this is root. */
void become_the_user_asked_for();

template <typename Tests> int run_guard_tests(int argc, char** argv)
{
    hear_all_signals();
    become_the_user_asked_for();
    return run_tests<QCoreApplication, Tests>(argc, argv);
}

#define KEST_GUARD_TEST(Tests) KEST_TEST_MAIN(run_guard_tests<Tests>)
