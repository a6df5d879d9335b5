#pragma once

#include <QString>

class FileView;

/** The kind of the file system of a path, "ext4", from the mount that lies nearest above it. */
QString file_system_of(const FileView& view, const QString& path);

/** Whether a file system of this kind lies on another machine. */
bool is_network(const QString& file_system);
