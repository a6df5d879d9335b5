#pragma once

#include "log/exporter.h"

#include <QJsonObject>

/**
 * The discharges as a Battery Data Format table. Charges hold no current, which that format requires:
 * they are left out.
 */
class BdfExport final : public Exporter
{
public:
    using Exporter::Exporter;

    QStringList notes() const override;
    /** What stands in the file beside the table. */
    QJsonObject metadata(const QString& log_name) const;

protected:
    void begin_log(LogGeneration log_generation) override;
    void row_read(const Section& section, const Row& row, const LogLine& line) override;

private:
    qint64 charge_rows = 0;
    qint64 discharge_rows = 0;
};
