#pragma once

#include "watch/moment.h"
#include "watch/situation.h"

#include <QByteArray>
#include <QList>
#include <QMap>

/** How much the running tests have written into a folder, and what is left for them. */
struct FolderUse
{
    QByteArray path;
    qint64 written = 0;   ///< bytes of all its running logs
    bool answers = true;  ///< else nothing new is known of its disk
};

/** What is left on the disk of a folder. */
struct DiskRoom
{
    qint64 free_bytes = 0;  ///< for an ordinary user
    qint64 free_files = 1;
    double bytes_per_second = -1.0;  ///< at which the tests write; -1 if not known yet
};

/**
 * Whether that is low or nothing, with the sentence that says so; false if there is room.
 *
 * @param situation what was found before, if `held`; what is found now
 */
bool judge_room(const DiskRoom& room, bool held, Situation& situation);

/** Looks after the disk, the clock and the sleep of the machine. */
class MachineLook
{
public:
    QList<Situation> look(const Moment& moment, const QList<FolderUse>& folders);

    /** What outlives a restart: which disks were found low or full, and since when. */
    QList<Situation> disks() const;
    void recall(const QList<Situation>& disks);

private:
    void look_at_clocks(const Moment& moment, const QByteArray& folder);
    void look_at_disk(const Moment& moment, const FolderUse& folder, QList<Situation>& found);
    double rate_of(const Moment& moment, const FolderUse& folder);

    struct Mark
    {
        qint64 awake_ms = 0;
        qint64 written = 0;
        double rate = -1.0;  ///< bytes per second; -1 if not known yet
    };

    Moment last;
    bool begun = false;
    QList<Situation> events;                  ///< of the clock, for a while
    QMap<QByteArray, Mark> marks;             ///< by folder
    QMap<QByteArray, Situation> disk_states;  ///< by folder
};
