#include "log/repair.h"

#include "programs/common/output_file.h"
#include "programs/common/terminal.h"
#include "log/mender.h"
#include "log/old_tail.h"
#include "log/options.h"
#include "log/place.h"
#include "log/targets.h"
#include "records/log_check.h"
#include "records/log_input.h"

#include <QJsonArray>

#include <functional>
#include <memory>
#include <vector>

namespace
{
constexpr int MOST_PARTS = 50;

QString part_path(const QString& log_path, const QString& folder, int part)
{
    const QString ending =
        part == 1 ? QString(".repaired.csv") : QString(".repaired-%1.csv").arg(part);
    return target_path(log_path, folder, ending);
}

QString why_refused(const QString& path)
{
    LogFile file;
    check_log(path, file);
    return file.accepted ? QString() : place_of(file.refusal);
}

/** The mended log in files that are not yet in their place. */
class PartFiles final : public MendedParts
{
public:
    PartFiles(const QString& path, const Options& given) : log_path(path), options(given)
    {
    }

    void begin_part() override
    {
        const QString path = part_path(log_path, options.to, int(parts.size()) + 1);
        parts.push_back({path, std::make_unique<OutputFile>(path, options.force)});
        if (int(parts.size()) > MOST_PARTS)
            error = "more than fifty logs stand in it: it is no log";
        else if (!claim_target(path))
            error =
                path + " has been made of another log just now; choose another folder with --to";
        else if (!parts.back().file->open())
            error = parts.back().file->error();
    }

    void write(const QByteArray& bytes) override
    {
        if (error.isEmpty())
            parts.back().file->write(bytes);
    }

    /**
     * Puts all in their places once each of them passes.
     *
     * @return why there is no copy; empty if there is one, or if a file failed, which is an `error` then
     */
    QString commit()
    {
        for (const Part& part : parts) {
            if (!part.file->flush())
                return fail(*part.file);
            const QString reason = why_refused(part.file->temporary_path());
            if (!reason.isEmpty())
                return "what can be kept does not load: " + reason;
        }
        QVector<OutputFile*> files;
        for (const Part& part : parts)
            files << part.file.get();
        const OutputFile* const failed = OutputFile::commit_together(files);
        return failed == nullptr ? QString() : fail(*failed);
    }

    QStringList paths() const
    {
        QStringList names;
        for (const Part& part : parts)
            names << part.path;
        return names;
    }

    QString error;

private:
    struct Part
    {
        QString path;
        std::unique_ptr<OutputFile> file;
    };

    QString fail(const OutputFile& file)
    {
        error = file.error();
        return QString();
    }

    QString log_path;
    const Options& options;
    std::vector<Part> parts;
};

/** Hands out the lines until somebody has had enough. */
void read_lines(LogInput& input, const std::function<bool(const QByteArray&, bool)>& take)
{
    bool wanted = true;
    while (wanted && !input.atEnd()) {
        QByteArray line = input.readLine();
        const bool complete = line.endsWith('\n');
        if (complete)
            line.chop(1);
        wanted = take(line, complete);
    }
}

/** Whoever listens may have had enough: `error` is not empty then. */
void mend(LogInput& input, Mender& mender, const QString& error)
{
    read_lines(input, [&](const QByteArray& line, bool complete) {
        mender.take_line(line, complete);
        return error.isEmpty() && mender.failure.isEmpty();
    });
    mender.finish();
    if (input.has_carriage_returns())
        mender.notes << "Carriage returns, which no test writes, are left out.";
    if (input.has_wide_characters())
        mender.failure = "it is in UTF-16 or UTF-32; save it as UTF-8";
    if (input.line_too_long())
        mender.failure = "a line of more than 64 MB";
    if (input.failed())
        mender.failure = "it cannot be read to its end: " + input.errorString();
}

qint64 old_tail_of(LogInput& input, const EventLog& events)
{
    OldTail tail(events);
    read_lines(input, [&tail](const QByteArray& line, bool) {
        tail.take_line(line);
        return tail.first_line() == 0;
    });
    return tail.first_line();
}

/** For a look at what would have to be done. */
class NoParts final : public MendedParts
{
public:
    void begin_part() override
    {
    }
    void write(const QByteArray&) override
    {
    }
};

QString lines_text(const LeftOut& lines)
{
    return lines.first == lines.last ? QString("line %1").arg(lines.first)
                                     : QString("lines %1 to %2").arg(lines.first).arg(lines.last);
}

QJsonObject left_out_json(const LeftOut& lines)
{
    return {{"first_line", lines.first}, {"last_line", lines.last}, {"reason", lines.reason}};
}

/** Tells what was done. */
Outcome told(const QString& path, const QStringList& copies, const Mender& mender)
{
    Outcome outcome;
    outcome.code = EXIT_SOMETHING_TO_TELL;
    QJsonArray left_out;
    for (const QString& copy : copies)
        outcome.text += shown(path + ": mended in " + copy) + '\n';
    for (const QString& note : mender.notes)
        outcome.text += shown(path + ": " + note) + '\n';
    for (const LeftOut& lines : mender.left_out) {
        outcome.text +=
            shown(path) + ": left out " + lines_text(lines) + ": " + lines.reason + '\n';
        left_out << left_out_json(lines);
    }
    outcome.json = {{"file", path},
                    {"result", "mended"},
                    {"copies", QJsonArray::fromStringList(copies)},
                    {"notes", QJsonArray::fromStringList(mender.notes)},
                    {"left_out", left_out},
                    {"lines_left_out", mender.lines_left_out}};
    return outcome;
}

Outcome nothing_to_do(const QString& path)
{
    Outcome outcome;
    outcome.text = shown(path) + ": needs nothing\n";
    outcome.json = {{"file", path}, {"result", "needs nothing"}};
    return outcome;
}

Outcome not_mended(const QString& path, const QString& reason)
{
    Outcome outcome;
    outcome.code = EXIT_SOMETHING_TO_TELL;
    outcome.text = shown(path + ": not mended: " + reason) + '\n';
    outcome.json = {{"file", path}, {"result", "not mended"}, {"reason", reason}};
    return outcome;
}

Outcome make_copy(const QString& path, const Options& options, qint64 tail_line)
{
    LogInput input;
    if (!input.open_log(path))
        return Outcome::failure(path, path + " cannot be read any more: " + input.errorString());
    PartFiles files(path, options);
    Mender mender(files);
    mender.expect_tail(tail_line);
    mend(input, mender, files.error);
    if (!files.error.isEmpty())
        return Outcome::failure(path, files.error);
    // Its last line was being written at the first look.
    if (mender.untouched())
        return nothing_to_do(path);
    const QString reason = mender.failure.isEmpty() ? files.commit() : mender.failure;
    if (!files.error.isEmpty())
        return Outcome::failure(path, files.error);
    return reason.isEmpty() ? told(path, files.paths(), mender) : not_mended(path, reason);
}
}  // namespace

Outcome repair_of(const QString& path, const Options& options)
{
    const EventLog events = event_log_beside(path);
    if (!events.two_writers.isEmpty())
        return not_mended(path, "two stations wrote it at once, as its event log tells: " +
                                    events.two_writers);
    LogInput look;
    LogInput again;
    if (!look.open_log(path) || !again.open_log(path))
        return Outcome::failure(path, not_readable(path, look.errorString()));
    const qint64 tail_line = old_tail_of(look, events);
    NoParts nowhere;
    Mender needed(nowhere);
    needed.expect_tail(tail_line);
    mend(again, needed, QString());
    if (!needed.failure.isEmpty())
        return not_mended(path, needed.failure);
    if (needed.untouched()) {
        const QString reason = why_refused(path);
        return reason.isEmpty() ? nothing_to_do(path) : not_mended(path, reason);
    }
    return make_copy(path, options, tail_line);
}
