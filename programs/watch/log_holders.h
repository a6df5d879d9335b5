#pragma once

#include "programs/common/system_roots.h"
#include "watch/file_tail.h"

#include <QList>
#include <QMap>
#include <QString>

#include <functional>
#include <sys/types.h>

/** A process that has a log open to write. */
struct Holder
{
    pid_t process = 0;    ///< 0: nobody
    quint64 started = 0;  ///< tells it from a later process of the same number
    int descriptor = -1;
    QString program;  ///< "kest-battery-tes": the system keeps fifteen characters

    bool is_known() const
    {
        return process != 0;
    }
};

/** Which processes have which logs open to write, as far as the system lets this one see. */
class LogHolders
{
public:
    explicit LogHolders(SystemRoots system_roots = SystemRoots());

    /**
     * Looks through all processes, which is no work for every look.
     *
     * @param may_touch false of a path on a machine that does not answer
     */
    void scan(const std::function<bool(const QByteArray& path)>& may_touch);
    /** As the last scan has found it. */
    Holder of(const FileIdentity& file) const;
    QList<FileIdentity> held() const;
    bool holds(const Holder& holder, const FileIdentity& file) const;
    bool lives(const Holder& holder) const;
    /** Whether a later process of the holder's program had a log open at the last scan. */
    bool program_runs_again(const Holder& holder) const;

private:
    SystemRoots roots;
    QMap<FileIdentity, Holder> holders;
};
