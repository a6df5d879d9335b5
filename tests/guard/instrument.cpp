#include "instrument.h"

#include "guard/lock_files.h"
#include "programs/common/open_files.h"

#include "support/test_files.h"
#include "support/test_program.h"

#include <algorithm>
#include <csignal>

namespace
{
/** "4F" for "4F4F": what came twice before the instrument looked. */
QByteArray once(const QByteArray& what)
{
    for (const char* command : {"4F", "43", "44"})
        if (what.size() % 2 == 0 && what == QByteArray(command).repeated(what.size() / 2))
            return command;
    return what;
}

/** Bytes on their way outlive their sender: what comes when nobody is there was sent before. */
void put_in_order(QVector<Instrument::Row>& rows)
{
    const int last = rows.size() - 1;
    if (last < 1 || rows[last - 1].what != "closed" || rows[last].what == "opened" ||
        rows[last].what == "ended")
        return;
    rows[last - 1].what.swap(rows[last].what);
    rows[last - 1].state = rows[last].state;
}

QString lock_of(const QString& path)
{
    return "/LCK.." + path.mid(5).replace('/', '_');
}
}  // namespace

void signal_process(qint64 process, int signal)
{
    if (process > 0)
        ::kill(pid_t(process), signal);
}

Instrument::Instrument(const QString& record_path, const QStringList& options)
    : record_file(record_path)
{
    do {
        if (process != nullptr)
            not_to_be_had.push_back(std::move(process));
        process = std::make_unique<QProcess>();
        process->start(simulator_program(),
                       QStringList{"--exit-with-stdin", "--record", record_path} + options);
        path = read_path();
    } while (!path.isEmpty() && !is_free_of_locks());
}

Instrument::~Instrument()
{
    signal(SIGCONT);
    // As long as the port is there its number is nobody else's, and whoever held it is dead by now.
    const OpenFiles files = open_files_of(pid_t(process->processId()), SystemRoots());
    if (files.have_far_end_of(path))
        is_free_of_locks();
    not_to_be_had.push_back(std::move(process));
    for (const auto& simulator : not_to_be_had) {
        simulator->closeWriteChannel();
        simulator->waitForFinished(PATIENCE_MS);
    }
}

/** Away with what a killed program has left behind; false where only another user may do that. */
bool Instrument::is_free_of_locks() const
{
    const QStringList folders = lock_folders();
    return std::all_of(folders.begin(), folders.end(), [this](const QString& folder) {
        const QString lock = folder + lock_of(path);
        return !QFile::exists(lock) || QFile::remove(lock);
    });
}

QString Instrument::read_path()
{
    while (!process->canReadLine() && process->waitForReadyRead(PATIENCE_MS)) {
    }
    return QString::fromLocal8Bit(process->readLine()).trimmed();
}

QByteArray Instrument::port() const
{
    return path.mid(5).toLocal8Bit();
}

void Instrument::set_fault(const QByteArray& words)
{
    // It complains of a line that makes no sense, and then has read those before.
    process->write(words + "\nheard?\n");
    process->setReadChannel(QProcess::StandardError);
    while (!process->canReadLine() && process->waitForReadyRead(PATIENCE_MS)) {
    }
    process->readLine();
    process->setReadChannel(QProcess::StandardOutput);
}

QString Instrument::next_path()
{
    return read_path();
}

void Instrument::signal(int number) const
{
    signal_process(process->processId(), number);
}

QVector<Instrument::Row> Instrument::record() const
{
    QVector<Row> rows;
    for (const QByteArray& line : content_of(record_file).split('\n')) {
        const QList<QByteArray> columns = line.split('\t');
        if (columns.size() == 3)
            rows.append({columns[0].toLongLong(), columns[1].at(0), columns[2]});
        put_in_order(rows);
    }
    return rows;
}

QByteArray Instrument::story() const
{
    QByteArrayList words;
    for (const Row& row : record()) {
        const QByteArray what = once(row.what);
        if (words.isEmpty() || words.last() != what)
            words << what;
    }
    return words.join(' ');
}

bool Instrument::comes_to(const QByteArray& end) const
{
    return QTest::qWaitFor([this, &end] { return story().endsWith(end); }, PATIENCE_MS);
}

char Instrument::state() const
{
    const QVector<Row> rows = record();
    return rows.isEmpty() ? 'O' : rows.last().state;
}

qint64 Instrument::lines_until_told_off() const
{
    qint64 let_go = -1;
    for (const Row& row : record()) {
        if (let_go < 0 && row.what == "closed")
            let_go = row.lines;
        if (let_go >= 0 && row.what == "4F")
            return row.lines - let_go;
    }
    return -1;
}
