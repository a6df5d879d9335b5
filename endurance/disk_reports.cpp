#include "disk_reports.h"

#include "support/test_files.h"
#include "support/whole_test.h"

#include "config/settings.h"

#include <QDir>

namespace
{
/** A test whose page and copies go into a folder of their own. */
struct Report
{
    Report()
    {
        Settings::set_log_all_telemetry(true);
        test.start();
        test.run(500);  // the event log then takes more than one write to copy
        QDir().mkpath(folder);
        Settings::set_pdf_dir(folder);
        Settings::set_copy_logs(true);
        csv = test.bench.csv();
        txt = test.bench.txt();
    }

    void press()
    {
        test.bench.press("pbGeneratePDF");
    }
    bool copies_are_whole() const
    {
        return content_of(folder + "/Pack A_1042.csv") == csv &&
               content_of(folder + "/Pack A_1042.txt") == txt;
    }
    bool page_is_whole() const
    {
        return content_of(folder + "/Pack A_1042.pdf").trimmed().endsWith("%%EOF");
    }

    WholeTest test;
    const QString folder = test.bench.path("pdfs");
    QByteArray csv;
    QByteArray txt;
};

/** Once badly: whole, or told; and whole the next time. Where no page comes nothing is copied. */
void fail_report(const char* part, const Way& way, int first,
                 const std::function<bool(Report&)>& once)
{
    Report report;
    const size_t boxes = report.test.bench.answers.seen.size();
    const bool failed = once(report);
    ++tally.tried;
    const bool told = report.test.bench.answers.seen.size() > boxes;
    check(report.copies_are_whole() || (failed && (told || !report.page_is_whole())), part, way,
          first, FOREVER, "a copy is cut short and nobody is told");
    check(report.test.bench.csv() == report.csv && report.test.bench.txt() == report.txt, part, way,
          first, FOREVER, "a log has changed");
    report.press();
    check(report.copies_are_whole(), part, way, first, FOREVER, "the next copy is not whole");
    check(report.page_is_whole(), part, way, first, FOREVER, "the next page is not whole");
}

std::function<bool(Report&)> failing(const WriteFault& fault)
{
    return [fault](Report& report) {
        WriteFaults::set(fault);
        report.press();
        const bool failed = WriteFaults::writes() >= fault.first;
        WriteFaults::clear();
        return failed;
    };
}

bool on_a_full_disk(Report& report)
{
    const Filler filler;
    report.press();
    return filler.has_bitten();
}
}  // namespace

void DiskReports::fail(const char* part, const Way& way, const WriteFault& fault)
{
    fail_report(part, way, fault.first, failing(fault));
}

void DiskReports::fail_on_full_disk(const Way& way)
{
    fail_report("report", way, 1, on_a_full_disk);
}
