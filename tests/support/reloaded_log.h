#pragma once

#include <QByteArray>
#include <QString>

class TestStation;

/**
 * Loads the data log of a live test into a preview and compares the two.
 *
 * Points are those of the live test in the digits of the log, totals and parameters likewise;
 * watt-hours are those of the log's rows, by the rule for reading them.
 *
 * @return empty if the preview shows the live test, else what differs
 */
QString difference_after_reload(const TestStation& live, const QByteArray& csv);
