#pragma once

#include <QByteArray>
#include <QString>

/**
 * Compares bytes with this file of tests/data, "whole/one_cycle.csv".
 *
 * With KEST_UPDATE_GOLDEN in the environment the file is written instead, and the answer is never
 * empty, so that a test which makes its own expectation does not pass.
 *
 * @return empty if they are equal, else the first line that differs, as it is and as it should be
 */
QString difference_from_golden(const QString& file_name, const QByteArray& bytes);
