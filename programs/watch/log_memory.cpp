#include "watch/log_memory.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace
{
/** Numbers of processes and files begin anew with the machine. */
QByteArray this_boot()
{
    QFile file("/proc/sys/kernel/random/boot_id");
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
}

/** A path may hold any byte. */
QString text_of_path(const QByteArray& path)
{
    return QString::fromLatin1(path.toPercentEncoding("/ "));
}

QJsonObject object_of(const LogMemory& memory)
{
    return {{"path", text_of_path(memory.path)},
            {"device", QString::number(memory.identity.device)},
            {"inode", QString::number(memory.identity.inode)},
            {"process", memory.holder.process},
            {"started", QString::number(memory.holder.started)},
            {"program", memory.holder.program},
            {"writer", int(memory.writer)},
            {"ended", memory.ended.toString(Qt::ISODate)}};
}

LogMemory memory_in(const QJsonObject& object, bool same_boot)
{
    LogMemory memory;
    memory.path = QByteArray::fromPercentEncoding(object["path"].toString().toLatin1());
    memory.identity.device = object["device"].toString().toULongLong();
    memory.identity.inode = object["inode"].toString().toULongLong();
    memory.holder.process = object["process"].toInt();
    // No process of this boot was started then.
    memory.holder.started = same_boot ? object["started"].toString().toULongLong() : ~quint64(0);
    memory.holder.program = object["program"].toString();
    const int writer = object["writer"].toInt();
    memory.writer = writer >= 0 && writer <= int(Writer::Untold) ? Writer(writer) : Writer::Unseen;
    memory.ended = QDateTime::fromString(object["ended"].toString(), Qt::ISODate);
    return memory;
}
}  // namespace

QByteArray text_of(const QList<LogMemory>& memories)
{
    QJsonArray tests;
    for (const LogMemory& memory : memories)
        tests << object_of(memory);
    return QJsonDocument(QJsonObject{{"boot", QString::fromLatin1(this_boot())}, {"tests", tests}})
        .toJson();
}

QList<LogMemory> memories_in(const QByteArray& text)
{
    const QJsonObject document = QJsonDocument::fromJson(text).object();
    const bool same_boot = document["boot"].toString().toLatin1() == this_boot();
    QList<LogMemory> memories;
    for (const QJsonValue& test : document["tests"].toArray())
        memories << memory_in(test.toObject(), same_boot);
    return memories;
}
