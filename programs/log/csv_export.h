#pragma once

#include "log/exporter.h"

/** One tidy table of all readings, by RFC 4180. */
class CsvExport final : public Exporter
{
public:
    using Exporter::Exporter;

protected:
    void section_begun(const Section& section) override;
    void row_read(const Section& section, const Row& row, const LogLine& line) override;
    void begin_log(LogGeneration log_generation) override;

private:
    QByteArray prefix;  ///< of each row of the section: battery to kind
};
