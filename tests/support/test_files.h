#pragma once

#include <QByteArray>
#include <QString>

/** Writes a whole file. False if that fails. */
bool write_file(const QString& path, const QByteArray& content);

/** A whole file; "(cannot be read)" if it cannot. */
QByteArray content_of(const QString& path);
