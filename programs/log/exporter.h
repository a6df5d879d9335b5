#pragma once

#include "programs/common/output_file.h"
#include "log/zone_clock.h"
#include "records/section_sink.h"

/** A log on its way into another form: sections and rows with their place in the whole test. */
class Exporter : public SectionSink
{
public:
    Exporter(OutputFile& to, const QTimeZone& zone);

    /** What has to stand behind the last row; to be called when the whole log has been read. */
    virtual void finish();
    /** What people should know about the file made. */
    virtual QStringList notes() const;

    void refuse(const LogRefusal& why) override;
    LogRefusal refusal;

protected:
    void section_begun(const Section& section) override;

    /** Since the first section began. It never goes back at a section, whatever the clock did. */
    double test_seconds(const Row& row) const;
    bool time_known() const;
    qint64 milliseconds(const Row& row) const;
    /** To be called for each row. */
    void note_row(const Row& row);

    OutputFile& out;
    ZoneClock clock;
    int step = 0;      ///< the sections counted
    RowText row_text;  ///< of the row in the making

private:
    bool start_known = false;
    qint64 section_start = 0;  ///< of the section, milliseconds since 1970 UTC
    qint64 first_start = 0;
    bool first_known = false;
    double section_offset = 0.0;  ///< seconds of test at which the section began
    double last_test_seconds = 0.0;
};
