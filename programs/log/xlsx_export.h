#pragma once

#include "log/exporter.h"

#include <memory>

/** A workbook: a summary, a sheet for each section, charts. Null where the library for it is missing. */
std::unique_ptr<Exporter> make_xlsx_export(OutputFile& out, const QTimeZone& zone);
