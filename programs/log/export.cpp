#include "log/export.h"

#include "programs/common/terminal.h"
#include "log/bdf_export.h"
#include "log/csv_export.h"
#include "log/json_export.h"
#include "log/options.h"
#include "log/place.h"
#include "log/targets.h"
#include "log/xlsx_export.h"
#include "records/log_input.h"
#include "station/logs/log_reader.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTextStream>

#include <memory>

namespace
{
QString ending_of(Format format)
{
    switch (format) {
    case Format::Csv:
        return ".tidy.csv";
    case Format::Xlsx:
        return ".xlsx";
    case Format::Bdf:
        return ".bdf.csv";
    case Format::Json:
        return ".json";
    case Format::None:
        break;
    }
    return QString();
}

std::unique_ptr<Exporter> make_exporter(Format format, OutputFile& out, const QTimeZone& zone)
{
    switch (format) {
    case Format::Csv:
        return std::make_unique<CsvExport>(out, zone);
    case Format::Xlsx:
        return make_xlsx_export(out, zone);
    case Format::Bdf:
        return std::make_unique<BdfExport>(out, zone);
    case Format::Json:
        return std::make_unique<JsonExport>(out, zone);
    case Format::None:
        break;
    }
    return nullptr;
}

/** One log on its way to one file, perhaps with another one beside it. */
class Job
{
public:
    Job(const QString& log_path, const Options& given) : path(log_path), options(given)
    {
        target = target_path(path, options.to, ending_of(options.format));
    }

    Outcome run()
    {
        LogInput input;
        if (!input.open_log(path))
            return failure(not_readable(path, input.errorString()));
        if (!claim_target(target))
            return failure(QString("%1 has been made of another log just now; export this one to "
                                   "another folder with --to.")
                               .arg(target));
        OutputFile out(target, options.force);
        if (!out.open())
            return failure(out.error());
        const std::unique_ptr<Exporter> exporter = make_exporter(options.format, out, options.zone);
        if (exporter == nullptr)
            return failure("This kest-log was built without xlsx; install libxlsxwriter-dev and "
                           "build it again.");
        const bool accepted = read(input, *exporter);
        if (input.failed())
            return failure(not_readable(path, input.errorString()));
        if (!accepted)
            return failure(QString("%1 does not load: %2.").arg(path, place_of(exporter->refusal)) +
                           (exporter->generation == LogGeneration::None
                                ? ""
                                : " A copy made by kest-log repair can be exported."));
        exporter->finish();
        return write(out, *exporter);
    }

private:
    Outcome failure(const QString& sentence) const
    {
        return Outcome::failure(path, sentence);
    }

    static bool read(LogInput& input, Exporter& exporter)
    {
        QTextStream stream(&input);
        const bool accepted = read_log(stream, exporter);
        exporter.end_log();
        if (input.line_too_long())
            exporter.refusal.reason = "a line of more than 64 MB";
        return accepted && !input.line_too_long();
    }

    /** Both files of a BDF table, or none. */
    Outcome write(OutputFile& out, const Exporter& exporter)
    {
        QVector<OutputFile*> files = {&out};
        OutputFile beside(target_path(path, options.to, ".bdf.metadata.json"), options.force);
        if (const auto* bdf = dynamic_cast<const BdfExport*>(&exporter)) {
            if (!beside.open())
                return failure(beside.error());
            beside.write(QJsonDocument(bdf->metadata(QFileInfo(path).fileName())).toJson());
            files << &beside;
        }
        if (const OutputFile* const failed = OutputFile::commit_together(files))
            return failure(failed->error());
        Outcome outcome;
        outcome.text = shown(target) + '\n';
        for (const QString& note : exporter.notes())
            outcome.messages << path + ": " + note;
        return outcome;
    }

    QString path;
    const Options& options;
    QString target;
};
}  // namespace

Outcome export_of(const QString& path, const Options& options)
{
    return Job(path, options).run();
}
