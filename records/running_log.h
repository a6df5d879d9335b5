#pragma once

#include "records/section_sink.h"
#include "station/logs/current_log_reader.h"

#include <QByteArray>

#include <memory>

/** A charge or a discharge that is over. */
struct Leg
{
    SectionKind kind = SectionKind::Charge;
    double seconds = 0.0;  ///< of its last row
    double amp_hours = 0.0;
    double last_volts = 0.0;
    double cutoff = 0.0;      ///< volts
    int max_charge_time = 0;  ///< seconds, whole hours
};

/**
 * A data log while it is being written, one line after the other. It does not grow with the log, but for
 * a few figures a leg.
 */
class RunningLog : public SectionSink
{
public:
    RunningLog();
    ~RunningLog() override;
    RunningLog(const RunningLog&) = delete;
    RunningLog& operator=(const RunningLog&) = delete;

    /** @param line without its end, in the coding of the locale */
    void take_line(const QByteArray& line);

    bool is_current_log = false;  ///< the first line says so
    bool in_section = false;
    Section section;       ///< the present one, up to its last row
    Row row;               ///< the last one
    qint64 rows = 0;       ///< of all sections
    double milliohms = 0;  ///< the last resistance measured
    bool has_resistance = false;
    QList<Leg> legs;  ///< those that are over

protected:
    void section_begun(const Section& begun) override;
    void row_read(const Section& of, const Row& read, const LogLine& line) override;
    void section_ended(const Section& ended) override;

private:
    std::unique_ptr<CurrentLogPass> pass;
    bool first_line = true;
};
