#pragma once

#include "doctor/seen.h"
#include "programs/common/file_view.h"

#include <QHash>

/** The processes of a machine, and which of its devices they hold. */
class Processes
{
public:
    explicit Processes(const FileView& files);

    /** Those of this program; only those of this user if `own`. */
    QList<SeenProcess> of(const QString& program, bool own = false) const;

    /** Who has the device open; whoever made a pseudo-terminal and merely keeps it does not count. */
    QList<SeenProcess> holders_of(const QString& device) const;

private:
    void read_process(const QString& pid);
    QString program_of(const QString& pid) const;
    QList<SeenProcess> locker_of(const QString& device) const;

    FileView view;
    QList<SeenProcess> all;
    QHash<QString, QList<SeenProcess>> holders;  ///< by device
};
