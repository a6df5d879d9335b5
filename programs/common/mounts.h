#pragma once

#include <QString>
#include <QStringList>

class FileView;

/** The kind of the file system of a path, "ext4", from the mount that lies nearest above it. */
QString file_system_of(const FileView& view, const QString& path);

/** Where file systems of other machines are mounted. */
QStringList network_mounts(const FileView& view);

/** Whether a file system of this kind lies on another machine. */
bool is_network(const QString& file_system);
