#include "watch/log_index.h"

#include "programs/common/whole_file.h"
#include "records/line_cutter.h"

#include <QDataStream>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

namespace
{
const QByteArray FORM = "kest-watch index 1";

void put(QDataStream& stream, const IndexedLog& log)
{
    stream << quint64(log.file.device) << quint64(log.file.inode) << log.size << log.written_ns
           << log.battery << log.serial_number << qint32(log.legs.size());
    for (const Leg& leg : log.legs)
        stream << qint32(leg.kind) << leg.seconds << leg.amp_hours << leg.last_volts << leg.cutoff
               << qint32(leg.max_charge_time);
}

Leg take_leg(QDataStream& stream)
{
    Leg leg;
    qint32 kind = 0;
    qint32 time = 0;
    stream >> kind >> leg.seconds >> leg.amp_hours >> leg.last_volts >> leg.cutoff >> time;
    leg.kind = kind == 0 ? SectionKind::Charge : SectionKind::Discharge;
    leg.max_charge_time = time;
    return leg;
}

IndexedLog take(QDataStream& stream)
{
    IndexedLog log;
    quint64 device = 0;
    quint64 inode = 0;
    qint32 legs = 0;
    stream >> device >> inode >> log.size >> log.written_ns >> log.battery >> log.serial_number >>
        legs;
    log.file = {dev_t(device), ino_t(inode)};
    for (qint32 i = 0; i < legs && stream.status() == QDataStream::Ok; ++i)
        log.legs << take_leg(stream);
    return log;
}

bool is_unchanged(const IndexedLog& log, const FileState& state)
{
    return log.file == state.identity && log.size == state.size &&
           log.written_ns == state.written_ns;
}
}  // namespace

LogIndex::LogIndex(QString index_file) : file(std::move(index_file))
{
    load();
}

void LogIndex::load()
{
    QFile source(file);
    if (file.isEmpty() || !source.open(QIODevice::ReadOnly))
        return;
    QDataStream stream(&source);
    stream.setVersion(QDataStream::Qt_5_15);
    QByteArray form;
    qint32 count = 0;
    stream >> form;
    if (form != FORM)
        return;
    stream >> count;
    for (qint32 i = 0; i < count && stream.status() == QDataStream::Ok; ++i) {
        QByteArray path;
        stream >> path;
        known.insert(path, take(stream));
    }
    if (stream.status() != QDataStream::Ok)
        known.clear();  // it is made anew
}

bool LogIndex::save(const QSet<QByteArray>& present)
{
    for (auto log = known.begin(); log != known.end();) {
        const bool gone = !present.contains(log.key());
        changed = changed || gone;
        if (gone)
            log = known.erase(log);
        else
            ++log;
    }
    if (!changed || file.isEmpty())
        return true;
    QDir().mkpath(QFileInfo(file).path());
    QByteArray content;
    QDataStream stream(&content, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_15);
    stream << FORM << qint32(known.size());
    for (auto log = known.cbegin(); log != known.cend(); ++log) {
        stream << log.key();
        put(stream, log.value());
    }
    changed = !replace_file(file, content);
    return !changed;
}

bool LogIndex::read_on(const QHash<QByteArray, FileState>& logs, const QSet<QByteArray>& written,
                       int most_ms)
{
    QElapsedTimer timer;
    timer.start();
    for (auto log = logs.cbegin(); log != logs.cend(); ++log) {
        const auto before = known.constFind(log.key());
        if (written.contains(log.key()) ||
            (before != known.constEnd() && is_unchanged(*before, log.value())))
            continue;
        if (timer.elapsed() >= most_ms)
            return false;
        read_log(log.key(), log.value());
    }
    return true;
}

void LogIndex::read_log(const QByteArray& path, const FileState& state)
{
    RunningLog reader;
    LineCutter lines;
    FileTail tail(path);
    tail.look([] {},
              [&](const QByteArray& piece) {
                  lines.feed(piece, [&](const QByteArray& line) { reader.take_line(line); });
              });
    reader.end_log();
    // As it was listed: a log that has grown since is read again.
    known.insert(path, {state.identity, state.size, state.written_ns, reader.profile_name,
                        reader.serial_number, reader.legs});
    changed = true;
    ++logs_read;
}

QList<Leg> LogIndex::of_pack(const QString& battery, const QString& serial_number) const
{
    QList<Leg> legs;
    for (const IndexedLog& log : known)
        if (log.battery == battery && log.serial_number == serial_number)
            legs << log.legs;
    return legs;
}

QList<Leg> LogIndex::of_battery(const QString& battery) const
{
    QList<Leg> legs;
    for (const IndexedLog& log : known)
        if (log.battery == battery)
            legs << log.legs;
    return legs;
}
