#include "log/run.h"

#include "programs/common/progress.h"
#include "programs/common/terminal.h"
#include "log/check.h"
#include "log/export.h"
#include "log/info.h"
#include "log/input_files.h"
#include "log/options.h"
#include "log/repair.h"
#include "log/workers.h"
#include "records/log_input.h"

#include <QJsonDocument>

#include <chrono>
#include <deque>
#include <functional>

namespace
{
constexpr std::chrono::milliseconds GLANCE(100);

using Work = std::function<Outcome(const QString& path)>;

int widest_of(const QStringList& files)
{
    int widest = 0;
    for (const QString& file : files)
        widest = qMax(widest, file.size());
    return widest;
}

Work work_of(const Options& options, const QStringList& files)
{
    const int widest = files.size() > 1 ? widest_of(files) : 0;
    switch (options.command) {
    case Command::Info:
        return [widest](const QString& path) {
            return info_of(path, widest);
        };
    case Command::Check:
        return check_of;
    case Command::Repair:
        return [&options](const QString& path) {
            return repair_of(path, options);
        };
    case Command::Export:
        return [&options](const QString& path) {
            return export_of(path, options);
        };
    case Command::None:
        break;
    }
    return nullptr;
}

/** One document or plain lines, log by log. */
class Report
{
public:
    Report(bool as_json, const QString& titles) : json(as_json)
    {
        whole = put(json ? QString("{\"files\":[") : titles);
    }

    void add(const Outcome& outcome)
    {
        for (const QString& message : outcome.messages)
            tell(shown(message));
        if (json)
            whole &= put((first ? "\n" : ",\n") + json_line(outcome));
        else
            whole &= put(outcome.text);
        first = false;
    }

    /** False if standard output did not take everything. */
    bool end()
    {
        if (json)
            whole &= put("\n]}\n");
        return whole;
    }

private:
    static QString json_line(const Outcome& outcome)
    {
        return QString::fromUtf8(QJsonDocument(outcome.json).toJson(QJsonDocument::Compact));
    }

    bool json;
    bool first = true;
    bool whole = true;
};

/** Results in the order of the files; no more of them wait than there are jobs. */
ExitCode work_on(const QStringList& files, const Options& options, const Work& work, Report& report)
{
    ExitCode code = EXIT_GOOD;
    Progress progress(files.size());
    Workers workers(qMin(options.jobs, files.size()));
    std::deque<std::future<Outcome>> running;
    const auto take_first = [&] {
        while (running.front().wait_for(GLANCE) != std::future_status::ready)
            progress.look(LogInput::bytes_of_all());
        const Outcome outcome = running.front().get();
        running.pop_front();
        progress.step();
        report.add(outcome);
        progress.look(LogInput::bytes_of_all());
        code = qMax(code, outcome.code);
    };
    for (const QString& file : files) {
        if (int(running.size()) == options.jobs)
            take_first();
        running.push_back(workers.begin([&work, file] { return work(file); }));
    }
    while (!running.empty())
        take_first();
    return code;
}
}  // namespace

ExitCode run(const Options& options)
{
    QStringList complaints;
    const QStringList files = input_files(options.files, options.recursive, complaints);
    for (const QString& complaint : qAsConst(complaints))
        tell(shown(complaint));
    const bool table = options.command == Command::Info && files.size() > 1 && !options.json;
    Report report(options.json, table ? info_titles(widest_of(files)) : QString());
    const ExitCode code = work_on(files, options, work_of(options, files), report);
    if (!report.end()) {
        tell("Standard output takes no more.");
        return EXIT_SOMETHING_TO_TELL;
    }
    return complaints.isEmpty() ? code : EXIT_SOMETHING_TO_TELL;
}
