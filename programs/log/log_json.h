#pragma once

#include "records/log_file.h"

#include <QJsonObject>

/** The stable form of a log's values; docs/json.md explains every key. */
QJsonObject info_json(const LogFile& file);
QJsonObject check_json(const LogFile& file, const QString& not_writable);
/** What the heads of that generation do not tell is null. */
QJsonObject parameters_json(const TestParameters& parameters, LogGeneration generation);
/** "charge" or "discharge" */
QString kind_name(SectionKind kind);
/** "current" or "older" */
QString generation_name(LogGeneration generation);
