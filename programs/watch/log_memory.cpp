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
            {"same_boot", memory.same_boot},
            {"ended", memory.ended.toString(Qt::ISODate)}};
}

QByteArray path_of_text(const QJsonValue& text)
{
    return QByteArray::fromPercentEncoding(text.toString().toLatin1());
}

LogMemory memory_of(const QJsonObject& object, bool text_of_this_boot)
{
    // One that was not taken up since may be older than the text.
    const bool same_boot = text_of_this_boot && object["same_boot"].toBool(true);
    LogMemory memory;
    memory.path = path_of_text(object["path"]);
    memory.same_boot = same_boot;
    memory.identity.device = object["device"].toString().toULongLong();
    memory.identity.inode = object["inode"].toString().toULongLong();
    // No process of this boot was started then: each one that has the program's name is a later one.
    if (same_boot) {
        memory.holder.process = object["process"].toInt();
        memory.holder.started = object["started"].toString().toULongLong();
    }
    memory.holder.program = object["program"].toString();
    const int writer = object["writer"].toInt();
    memory.writer = writer >= 0 && writer <= int(Writer::Untold) ? Writer(writer) : Writer::Unseen;
    memory.ended = QDateTime::fromString(object["ended"].toString(), Qt::ISODate);
    return memory;
}
QJsonObject object_of(const Situation& disk)
{
    return {{"folder", text_of_path(disk.log)},
            {"full", disk.condition == Condition::DiskFull},
            {"since", disk.since.toString(Qt::ISODateWithMs)}};
}

Situation disk_of(const QJsonObject& object)
{
    Situation disk;
    disk.log = path_of_text(object["folder"]);
    disk.condition = object["full"].toBool() ? Condition::DiskFull : Condition::DiskLow;
    disk.since = QDateTime::fromString(object["since"].toString(), Qt::ISODateWithMs);
    return disk;
}
}  // namespace

QByteArray text_of(const WatchMemory& memory)
{
    QJsonArray tests;
    for (const LogMemory& test : memory.tests)
        tests << object_of(test);
    QJsonArray disks;
    for (const Situation& disk : memory.disks)
        disks << object_of(disk);
    return QJsonDocument(QJsonObject{{"boot", QString::fromLatin1(this_boot())},
                                     {"tests", tests},
                                     {"disks", disks}})
        .toJson();
}

WatchMemory memory_in(const QByteArray& text)
{
    const QJsonObject document = QJsonDocument::fromJson(text).object();
    const bool same_boot = document["boot"].toString().toLatin1() == this_boot();
    WatchMemory memory;
    const QJsonArray tests = document["tests"].toArray();
    for (const QJsonValue& test : tests)
        memory.tests << memory_of(test.toObject(), same_boot);
    const QJsonArray disks = document["disks"].toArray();
    for (const QJsonValue& disk : disks)
        memory.disks << disk_of(disk.toObject());
    return memory;
}
