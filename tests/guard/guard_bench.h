#pragma once

#include "support/test_program.h"

#include <QProcess>
#include <QTemporaryDir>

#include <csignal>
#include <memory>
#include <vector>

constexpr int PATIENCE_MS =
    120000;  // a limit for what has gone wrong; nothing waits for it to pass

/** A simulated instrument in a process of its own, and its record of what it was told. */
class Instrument
{
public:
    struct Row
    {
        qint64 lines;
        char state;
        QByteArray what;
    };

    Instrument(const QString& record_path, const QStringList& options);
    ~Instrument();

    QVector<Row> record() const;
    /** "opened 44 closed opened 4F closed": all that happened, in order. */
    QByteArray story() const;
    /** Returns when the story ends so; false if it does not come to that. */
    bool comes_to(const QByteArray& end) const;
    char state() const;
    /** Lines between the first time that it was let go and the first "O" behind that; -1 if none. */
    qint64 lines_until_told_off() const;
    void set_fault(const QByteArray& words);
    /** The path of the port that has come in place of the first one. */
    QString next_path();
    /** Stops the instrument's own process, and lets it go on. */
    void stop() const;
    void go_on() const;

    QString path;  ///< "/dev/pts/3"
    QByteArray port() const;

private:
    QProcess process;
    QString record_file;
};

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
    bool start_by(const QString& program, const QStringList& arguments);
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
    bool ends_with(int status);

    QTemporaryDir folder;
    std::vector<std::unique_ptr<Instrument>> instruments;
    QProcess guard;
    pid_t program = -1;
    QByteArray program_name;  ///< its argv[0]
    QByteArray said;          ///< all that the guard said by now
    QProcessEnvironment environment;

private:
    bool hear_of_program();
};

/** Where the programs under test are; copies, if the user of the test may not enter their folder. */
QString guard_program();
QString guarded_program();
QString simulator_program();

/** Runs a class of tests as the user that the environment asks for. */
template <typename Tests> int run_guard_tests(int argc, char** argv);

/** Becomes an ordinary user for good if the environment asks for that and this is root. */
void become_the_user_asked_for();

template <typename Tests> int run_guard_tests(int argc, char** argv)
{
    become_the_user_asked_for();
    return run_tests<QCoreApplication, Tests>(argc, argv);
}

#define KEST_GUARD_TEST(Tests) KEST_TEST_MAIN(run_guard_tests<Tests>)
