#pragma once

#include "disk_checks.h"

#include <functional>

/** The page and the copies of the logs on a disk that fails. */
namespace DiskReports
{
/** Each fault is one of writing, or of opening, a page or a copy. */
void fail(const char* part, const Way& way, const WriteFault& fault);
/** The temporary folder's disk is full. */
void fail_on_full_disk(const Way& way);
}  // namespace DiskReports
