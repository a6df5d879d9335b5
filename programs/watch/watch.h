#pragma once

#include "watch/forecaster.h"
#include "watch/log_folder.h"
#include "watch/log_holders.h"
#include "watch/look.h"
#include "watch/machine_look.h"
#include "watch/moment.h"
#include "watch/watched_log.h"

#include <QStringList>

#include <memory>
#include <vector>

/** What the watch has to know before its first look. */
struct WatchSettings
{
    QStringList folders;          ///< absolute
    QString state_folder;         ///< where it remembers which tests ran; empty: nowhere
    bool keeps_memory = true;     ///< false: reads what is remembered and leaves it as it is
    int quiet_seconds = 30;       ///< without a row, where rows are due: the instrument is silent
    bool all_on_network = false;  ///< as if another machine had all folders
    FolderProbe::Ask ask;         ///< whether such a folder answers; the system, if there is none
};

/** Follows the logs of some folders. Reads only. */
class Watch
{
public:
    explicit Watch(const WatchSettings& watch_settings);

    /** To be called every few seconds. */
    Look look(const Moment& moment);
    /** Whether all earlier logs have been read, which takes some looks the first time. */
    bool knows_all_logs() const;

private:
    Look find_situations(const Moment& moment);
    void find_who_answers();
    bool answers(const QByteArray& path) const;
    bool may_touch(const QByteArray& path, const QStringList& mounts) const;
    void follow_names(const LogFolder& folder);
    void scan_when_due(const Moment& moment);
    void begin_to_follow(const LogFolder& folder);
    void forget_old(const Moment& moment);
    bool is_to_be_forgotten(const WatchedLog& log, const Moment& moment) const;
    bool was_put_away(const WatchedLog& log) const;
    WatchedLog* watched(const QByteArray& path) const;
    void add(const QByteArray& path, const LogFolder& folder);
    bool may_hide(const LogFolder& folder, const QByteArray& path) const;
    void remember() const;
    void recall();
    void take_up_awaited();
    const LogFolder* folder_of(const QByteArray& path) const;
    QList<FolderUse> folder_uses() const;

    WatchSettings settings;
    LogHolders holders;
    MachineLook machine;
    Forecaster forecaster;
    std::vector<std::unique_ptr<LogFolder>> folders;
    QSet<QByteArray> answering;  ///< paths of those that may be looked into now
    std::vector<std::unique_ptr<WatchedLog>> logs;
    qint64 scanned_ms = 0;
    bool scanned = false;
    QList<LogMemory> awaited;  ///< remembered, in folders that are not there yet
    mutable QByteArray remembered;
};
