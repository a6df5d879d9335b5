#include "watch/tells/memory_file.h"

#include "programs/common/whole_file.h"
#include "watch/tells/event_json.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace
{
constexpr int FORM = 1;
const QString NAME = "kest-watch";

QJsonValue stored_time(const QDateTime& time)
{
    return time.isValid() ? QJsonValue(time.toUTC().toString(Qt::ISODateWithMs)) : QJsonValue();
}

QDateTime time_of(const QJsonValue& stored)
{
    return QDateTime::fromString(stored.toString(), Qt::ISODateWithMs).toUTC();
}

QJsonObject stored_noted(const Noted& noted)
{
    Event event;
    event.situation = noted.situation;
    QJsonObject object = stored_event(event);
    object["told"] = stored_time(noted.told);
    object["over"] = stored_time(noted.over);
    object["old"] = noted.old;
    return object;
}

QJsonObject stored_letter(const Letter& letter)
{
    return {{"way", letter.way}, {"event", stored_event(letter.event)}};
}

void take_noted(const QJsonArray& stored, Memory& memory)
{
    for (const QJsonValue& value : stored) {
        const QJsonObject object = value.toObject();
        if (const std::optional<Event> event = event_of(object))
            memory.noted << Noted{event->situation, time_of(object["told"]),
                                  time_of(object["over"]), object["old"].toBool(), false};
    }
}

void take_letters(const QJsonArray& stored, Memory& memory)
{
    for (const QJsonValue& value : stored) {
        const QJsonObject object = value.toObject();
        if (const std::optional<Event> event = event_of(object["event"].toObject()))
            memory.letters << Letter{*event, object["way"].toString()};
    }
}
}  // namespace

QByteArray memory_document(const Memory& memory)
{
    QJsonArray noted;
    for (const Noted& one : memory.noted)
        noted << stored_noted(one);
    QJsonArray letters;
    for (const Letter& letter : memory.letters)
        letters << stored_letter(letter);
    const QJsonObject document = {{"version", FORM},
                                  {"born", stored_time(memory.born)},
                                  {"last_number", memory.last_number},
                                  {"noted", noted},
                                  {"letters", letters}};
    return QJsonDocument(document).toJson();
}

bool read_memory_document(const QByteArray& document, Memory& memory)
{
    const QJsonObject object = QJsonDocument::fromJson(document).object();
    if (object["version"].toInt() != FORM)
        return false;
    memory = Memory();
    memory.born = time_of(object["born"]);
    memory.last_number = qint64(object["last_number"].toDouble());
    take_noted(object["noted"].toArray(), memory);
    take_letters(object["letters"].toArray(), memory);
    return true;
}

MemoryFile::MemoryFile(const QString& state_folder) : folder(state_folder)
{
}

MemoryFile::~MemoryFile()
{
    if (lock_handle >= 0)
        ::close(lock_handle);
}

Lock MemoryFile::lock()
{
    error_text.clear();
    if (!QFile::exists(folder) && QDir().mkpath(folder))
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const QByteArray name = QFile::encodeName(QDir(folder).filePath("lock"));
    lock_handle = ::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    // Of the process, not of the handle: a command that was just forked off must not hold it on.
    struct flock whole_file = {};
    whole_file.l_type = F_WRLCK;
    whole_file.l_whence = SEEK_SET;
    if (lock_handle >= 0 && ::fcntl(lock_handle, F_SETLK, &whole_file) == 0)
        return Lock::Taken;
    if (lock_handle >= 0 && (errno == EAGAIN || errno == EACCES)) {
        error_text = "Another kest-watch of this user is running; one is enough.";
        return Lock::HeldByAnother;
    }
    error_text = QString("%1 cannot be written: %2. Nothing is remembered over a restart.")
                     .arg(folder, qt_error_string());
    return Lock::Impossible;
}

Memory MemoryFile::load()
{
    error_text.clear();
    Memory memory;
    QFile file(path());
    if (!file.exists())
        return memory;
    const bool opened = file.open(QIODevice::ReadOnly);
    if (opened && read_memory_document(file.readAll(), memory))
        return memory;
    const QString aside = path() + ".damaged";
    error_text = QString("%1 cannot be understood and is now %2; what was told before may be told "
                         "again.")
                     .arg(path(), aside);
    QFile::remove(aside);
    file.rename(aside);
    return memory;
}

bool MemoryFile::save(const Memory& memory)
{
    error_text.clear();
    if (replace_file(path(), memory_document(memory)))
        return true;
    error_text = QString("%1 cannot be written: %2. Messages go out all the same; after a restart "
                         "some may come again. Make room.")
                     .arg(path(), qt_error_string());
    return false;
}

QString MemoryFile::error() const
{
    return error_text;
}

QString MemoryFile::path() const
{
    return QDir(folder).filePath("memory.json");
}

QString watch_state_folder()
{
    const QString chosen = QFile::decodeName(qgetenv("XDG_STATE_HOME"));
    // As the desktop's rules have it: a relative path is none.
    const QString base =
        QDir::isAbsolutePath(chosen) ? chosen : QDir::home().filePath(".local/state");
    return QDir(base).filePath(NAME);
}
