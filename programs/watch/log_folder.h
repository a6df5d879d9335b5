#pragma once

#include "watch/file_tail.h"
#include "watch/folder_follower.h"
#include "watch/folder_probe.h"

#include <QHash>
#include <QMap>

/** The data logs of a folder, by their names and by what the system tells of them. */
class LogFolder
{
public:
    LogFolder(const QByteArray& folder_path, bool on_network,
              const FolderProbe::Ask& ask = nullptr);

    /** Whether one may look: not into a folder of another machine that does not answer. */
    bool answers();
    /** What has changed since the last look; the first one finds all that is there. */
    void look();

    /** Where the file is now; empty if it is not in this folder. */
    QByteArray path_of(const FileIdentity& file) const;
    bool is_there() const;

    const QByteArray path;
    QByteArray real_path;               ///< without a link in it; empty before the first look
    const bool network;                 ///< other machines may write there, too
    QHash<QByteArray, FileState> logs;  ///< by path
    QSet<QByteArray> grown;             ///< paths of those that became longer since the look before

private:
    void list();
    void look_at(const QByteArray& log);
    void forget(const QByteArray& log);

    FolderProbe probe;
    FolderFollower follower;
    QMap<FileIdentity, QByteArray> paths;
    bool there = false;
};

/** "a/b.c.csv" gives "a/b.c.txt". */
QByteArray event_log_of(const QByteArray& log);
