#pragma once

#include "doctor/processes.h"
#include "doctor/seen.h"
#include "programs/common/file_view.h"

/** Looks at all but what the ports say. Opens no port and writes nothing. */
Seen look(const FileView& view);

/** The parts of it. */
void look_at_ports(const FileView& view, const Processes& processes, Seen& seen);
QList<SeenStore> look_at_stores();
/** Of the settings that look_at_stores() has read. */
QList<SeenFolder> look_at_folders(const FileView& view);
QList<SeenSleeper> look_at_sleepers(const FileView& view);
SeenClock look_at_clock(const FileView& view);
