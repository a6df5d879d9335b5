#pragma once

#include <QByteArray>
#include <QString>

/** The full path of a file of the sources, "docs/simulator.md". */
QString source_file(const QString& path);

/** The full path of a file below tests/data, "whole/three_cycles.csv". */
QString test_data(const QString& path);

/** Writes a whole file. False if that fails. */
bool write_file(const QString& path, const QByteArray& content);

/** A whole file; "(cannot be read)" if it cannot. */
QByteArray content_of(const QString& path);
