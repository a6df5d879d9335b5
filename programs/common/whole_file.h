#pragma once

#include <QByteArray>
#include <QString>

/** Writes all of it. False with errno: a full disk takes a part, and tells at the next try. */
bool write_all(int handle, const QByteArray& bytes);

/**
 * Puts a file of this content in the place of what stands there, in one step: a full disk, and whoever
 * is killed meanwhile, leaves the old one whole. It is made beside it as PATH.new, under one name, so
 * that nothing piles up. False with errno.
 */
bool replace_file(const QString& path, const QByteArray& content);
