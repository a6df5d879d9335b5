#include "guard/teller.h"

#include "common/date_time.h"
#include "guard/desktop_notice.h"

#include <QDir>
#include <QFile>

#include <poll.h>
#include <unistd.h>

namespace
{
const QString NAME = "kest-guard";

/** A reader who has stopped reading, or a terminal held by Ctrl-S, must not hold up a guard. */
bool takes_words(int stream)
{
    pollfd waiting = {stream, POLLOUT, 0};
    return ::poll(&waiting, 1, 0) > 0 && (waiting.revents & POLLOUT) != 0;
}

void write_to_people(const QByteArray& line)
{
    if (takes_words(STDERR_FILENO))
        static_cast<void>(!::write(STDERR_FILENO, line.constData(), size_t(line.size())));
}

QString time_stamp()
{
    const QDateTime now = Time::now();
    return now.toOffsetFromUtc(now.offsetFromUtc()).toString(Qt::ISODate);
}
}  // namespace

Teller::Teller(const QString& state_folder) : folder(state_folder)
{
    if (!QFile::exists(folder) && QDir().mkpath(folder))
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void Teller::tell(const QString& sentence) const
{
    write_to_people((NAME + ": " + sentence + "\n").toLocal8Bit());
    note(sentence);
}

void Teller::note(const QString& sentence) const
{
    QFile log(log_path());
    if (log.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text))
        log.write((time_stamp() + " " + sentence + "\n").toUtf8());
}

void Teller::show_on_desktop(const QString& headline, const QString& text) const
{
    start_desktop_notice(headline, text);
}

QString Teller::log_path() const
{
    return QDir(folder).filePath(NAME + ".log");
}

QString state_folder()
{
    const QString chosen = QFile::decodeName(qgetenv("XDG_STATE_HOME"));
    // As the desktop's rules have it: a relative path is none.
    const QString base =
        QDir::isAbsolutePath(chosen) ? chosen : QDir::home().filePath(".local/state");
    return QDir(base).filePath(NAME);
}
