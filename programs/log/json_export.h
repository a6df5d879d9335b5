#pragma once

#include "log/exporter.h"

/** All readings by section, each a list in the order of "columns". */
class JsonExport final : public Exporter
{
public:
    using Exporter::Exporter;

    void finish() override;

protected:
    void section_begun(const Section& section) override;
    void row_read(const Section& section, const Row& row, const LogLine& line) override;
    void section_ended(const Section& section) override;

private:
    void put_head();

    bool head_put = false;
    bool first_row = true;
};
