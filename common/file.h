#pragma once

#include <QString>

/** Rules for file names, and the few file operations that several folders need. */
namespace File
{
/** True if a character is a control character, lies beyond Latin-1 or is one of <>:"/\|?* . */
bool contains_unsafe_filename_characters(QString name);

/** True if `name` can be part of a file name on every system that the logs may be copied to. */
bool is_safe_filename(QString name);

/**
 * Puts `extension`, ".pdf" for instance, in the place of the last "." and what follows it.
 *
 * @return false if `extension` has no leading "." or `filename` no "." at all
 */
bool change_extension(QString filename, QString extension, QString& changed);

/** Creates the directory and its parents where they are missing. True if it exists afterwards. */
bool make_path(QString path);

/** The absolute directory that holds `path`. */
QString directory_of(QString path);

/** Copies a file and creates the target's directory. A file is never copied onto itself. */
bool copy_file(QString source, QString target, bool overwrite);
}  // namespace File
