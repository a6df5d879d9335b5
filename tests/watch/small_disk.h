#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

/** A disk of 1 MB in a world of its own, which an ordinary user can make. */
class SmallDisk
{
public:
    SmallDisk();
    ~SmallDisk();

    /** The command that runs another one where the disk is. */
    QStringList entrance() const;
    /** What it is called there. */
    QString path() const;
    /** A file on it, as this process reaches it. */
    QString file(const QString& name) const;

    /** Leaves no block free. False if that does not come about. */
    bool fill() const;
    bool make_room() const;

private:
    QTemporaryDir place;
    QProcess keeper;
};
