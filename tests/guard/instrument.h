#pragma once

#include <QByteArray>
#include <QProcess>
#include <QVector>

#include <memory>
#include <vector>

constexpr int PATIENCE_MS =
    120000;  // a limit for what has gone wrong; nothing waits for it to pass

/** Sends a signal to one process; to none if there is none, as the numbers up to 0 mean whole groups. */
void signal_process(qint64 process, int signal);

/** Where the simulator is; a copy, if the user of the test may not enter its folder. */
QString simulator_program();

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
    /**
     * "opened 44 closed opened 4F closed": all that happened, in order. A command counts once, however
     * often it was repeated: a sender that waits for its turn finds lines from before it.
     */
    QByteArray story() const;
    /** Returns when the story ends so; false if it does not come to that. */
    bool comes_to(const QByteArray& end) const;
    char state() const;
    /** Lines between the first time that it was let go and the first "O" behind that; -1 if none. */
    qint64 lines_until_told_off() const;
    /** Returns when the instrument has the fault. */
    void set_fault(const QByteArray& words);
    /** The path of the port that has come in place of the first one. */
    QString next_path();
    /** SIGSTOP to the instrument's own process, or SIGCONT. */
    void signal(int number) const;

    QString path;  ///< "/dev/pts/3"
    QByteArray port() const;

private:
    QString read_path();
    bool is_free_of_locks() const;

    std::unique_ptr<QProcess> process;
    std::vector<std::unique_ptr<QProcess>> not_to_be_had;  ///< whose ports bear another user's lock
    QString record_file;
};
