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
    qint64 written = 0;  ///< bytes of all its running logs
};

/** What is left on the disk of a folder. */
struct DiskRoom
{
    qint64 free_bytes = 0;  ///< for an ordinary user
    qint64 free_files = 1;
    double bytes_per_second = 0.0;  ///< at which the tests write; 0 if not known
};

/** Whether that is low or nothing, with the sentence that says so; false if there is room. */
bool judge_room(const DiskRoom& room, Situation& situation);

/** Looks after the disk, the clock and the sleep of the machine. */
class MachineLook
{
public:
    QList<Situation> look(const Moment& moment, const QList<FolderUse>& folders);

private:
    void look_at_clocks(const Moment& moment, const QByteArray& folder);
    void look_at_disk(const Moment& moment, const FolderUse& folder, QList<Situation>& found);
    double rate_of(const Moment& moment, const FolderUse& folder);

    struct Mark
    {
        qint64 awake_ms = 0;
        qint64 written = 0;
        double rate = 0.0;
    };

    Moment last;
    bool begun = false;
    QList<Situation> events;                  ///< of the clock, for a while
    QMap<QByteArray, Mark> marks;             ///< by folder
    QMap<QByteArray, Situation> disk_states;  ///< by folder
};
