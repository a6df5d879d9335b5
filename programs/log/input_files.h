#pragma once

#include <QStringList>

/**
 * The logs that the words of a command line mean: files as they stand, the `.csv` files of folders, and
 * what fits patterns like "*.csv". Files that this program makes are passed over in folders.
 *
 * @param complaints sentences about words that mean no file at all, and what cannot be looked at in folders
 */
QStringList input_files(const QStringList& words, bool recursive, QStringList& complaints);
