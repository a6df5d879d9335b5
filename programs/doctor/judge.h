#pragma once

#include "doctor/finding.h"
#include "doctor/seen.h"

/** What all that means: findings, the worst first. */
QList<Finding> judge(const Seen& seen);

/** Why it is no telemetry, to follow upon the line: "has 3 fields, not 7"; empty for telemetry. */
QString why_no_telemetry(const QString& line);

/** What a valid line says: "24.10 V, 4.8 A, instrument 7, discharging". */
QString telemetry_in_words(const QString& line);

/** "FTDI FT232R USB UART, number A50285BI (0403:6001)" */
QString adapter_in_words(const SeenAdapter& adapter);

/** For a shell, "/home/me/Pack's" as '/home/me/Pack'\''s'; plain names stay plain. */
QString shell_quoted(const QString& text);
