#pragma once

#include <QString>

/** Where what is made of a log goes: "logs/Pack A.csv" with "out" and ".bdf.csv" gives "out/Pack A.bdf.csv". */
QString target_path(const QString& log_path, const QString& folder, const QString& ending);

/**
 * Whether this run makes the file for the first time. Two logs of the same name would meet in one folder,
 * and even --force is not to let one give way to the other.
 */
bool claim_target(const QString& path);
