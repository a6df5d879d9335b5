#include "watch/watched_log.h"

#include "watch/log_folder.h"

#include <sys/statvfs.h>
#include <unistd.h>

namespace
{
/** A folder may be mounted so that nobody notes who reads its files. */
bool keeps_access_times(const QByteArray& path)
{
    struct statvfs system = {};
    return ::statvfs(path.constData(), &system) == 0 && (system.f_flag & ST_NOATIME) == 0;
}

qint64 start_of(const Holder& holder, const Moment& moment)
{
    const qint64 age_ms =
        moment.passed_ms - qint64(holder.started) * 1000 / qint64(::sysconf(_SC_CLK_TCK));
    return moment.time.toMSecsSinceEpoch() - age_ms;
}
}  // namespace

WatchedLog::WatchedLog(const QByteArray& log_path, bool writer_may_hide)
    : may_hide(writer_may_hide),
      path(log_path),
      data(log_path),
      events(event_log_of(log_path)),
      log(std::make_unique<RunningLog>())
{
}

WatchedLog::WatchedLog(const LogMemory& memory, bool writer_may_hide)
    : WatchedLog(memory.path, writer_may_hide)
{
    writer = memory.writer;
    holder = memory.holder;
    ended = memory.ended;
}

LogMemory WatchedLog::memory() const
{
    return {path, data.state.identity, holder, writer, ended};
}

void WatchedLog::rename(const QByteArray& new_path)
{
    path = new_path;
    data.rename(path);
    events.rename(event_log_of(path));
}

void WatchedLog::begin_data()
{
    log = std::make_unique<RunningLog>();
    data_lines = LineCutter();
    progress_at_opening = 0;
}

void WatchedLog::begin_events()
{
    story = TestStory();
    event_lines = LineCutter();
    changes = 0;
    progress_at_opening = 0;
}

void WatchedLog::read(const Moment& moment)
{
    read_events(moment);
    read_data(moment);
    first_look = false;
}

void WatchedLog::read_data(const Moment& moment)
{
    const qint64 rows = log->rows;
    const auto begin = [this] {
        begin_data();
    };
    const auto take = [this](const QByteArray& piece) {
        data_lines.feed(piece, [this](const QByteArray& line) { log->take_line(line); });
    };
    const FileTail::News news = data.look(begin, take);
    if (news == FileTail::News::None || news == FileTail::News::Gone)
        return;
    line_ms = qMax(line_ms, arrival_of(EventLine(), moment).awake_ms);
    if (log->rows == rows)
        return;
    row_ms = qMax(row_ms, arrival_of(EventLine(), moment).awake_ms);
    if (story.reset_ms <= row_ms)
        story.end_silence();
}

void WatchedLog::read_events(const Moment& moment)
{
    const auto begin = [this] {
        begin_events();
    };
    const auto take = [this, &moment](const QByteArray& piece) {
        event_lines.feed(piece, [&](const QByteArray& line) { take_event(line, moment); });
    };
    events.look(begin, take);
}

void WatchedLog::take_event(const QByteArray& text, const Moment& moment)
{
    const EventLine line = read_event_line(QString::fromLocal8Bit(text));
    const Arrival arrival = arrival_of(line, moment);
    story.take(line, arrival.awake_ms, arrival.time);
    line_ms = qMax(line_ms, arrival.awake_ms);
    if (line.kind == EventKind::PhaseChange) {
        ++changes;
        row_ms = arrival.awake_ms;
    }
}

/** What stood there at the first look came when its own time says, if that can be; else with the file. */
WatchedLog::Arrival WatchedLog::arrival_of(const EventLine& line, const Moment& moment) const
{
    qint64 age_ms = 0;
    if (first_look) {
        const bool of_events = line.time.isValid();
        const qint64 written_ms = (of_events ? events : data).state.written_ms;
        const qint64 now_ms = moment.time.toMSecsSinceEpoch();
        age_ms = now_ms - written_ms;
        if (line.kind == EventKind::PhaseChange || line.kind == EventKind::Reset) {
            const qint64 told_ms = now_ms - line.time.toMSecsSinceEpoch();
            age_ms = told_ms >= 0 ? told_ms : age_ms;
        }
    }
    age_ms = qBound(qint64(0), age_ms, moment.awake_ms);
    return {moment.awake_ms - age_ms, moment.time.addMSecs(-age_ms)};
}

qint64 WatchedLog::progress() const
{
    return log->rows + changes;
}

void WatchedLog::judge(const Moment& moment, const LogHolders& holders)
{
    const FileIdentity& file = data.state.identity;
    const bool kept = holders.holds(holder, file);
    const Holder found = kept ? holder : holders.of(file);
    if (!data.state.exists)
        lose_holder(moment, holders);
    else if (kept && writer == Writer::Previewer && progress() > progress_at_opening)
        writer = Writer::Running;
    else if (kept && (writer == Writer::Running || writer == Writer::Previewer))
        ended = QDateTime();
    else if (found.is_known() && holders.holds(found, file))
        take_holder(found, moment);
    else
        lose_holder(moment, holders);
}

void WatchedLog::take_holder(const Holder& new_holder, const Moment& moment)
{
    // Remembered as running, by the same process: what was seen then need not be seen again.
    const bool known = writer == Writer::Running && holder.process == new_holder.process &&
                       holder.started == new_holder.started;
    holder = new_holder;
    ended = QDateTime();
    progress_at_opening = progress();
    writer = known || written_since_opened(moment) ? Writer::Running : Writer::Previewer;
}

// A log is read when it is loaded, and from then on only written: what was read since it was written
// last is a preview, or a backup has come by meanwhile, which the next row sets right.
bool WatchedLog::written_since_opened(const Moment& moment) const
{
    const qint64 written_ms = qMax(data.state.written_ms, events.state.written_ms);
    if (written_ms < start_of(holder, moment))
        return false;
    return !keeps_access_times(path) || data.state.written_ns > data.state.accessed_ns;
}

void WatchedLog::lose_holder(const Moment& moment, const LogHolders& holders)
{
    switch (writer) {
    case Writer::Running:
        end_as(holders.lives(holder) ? Writer::Closed : Writer::Gone, moment);
        break;
    case Writer::Previewer:
        writer = Writer::Unseen;
        progress_at_opening = progress();
        break;
    case Writer::Unseen:
        if (may_hide && progress_at_opening > 0 && progress() > progress_at_opening)
            writer = Writer::Untold;
        if (progress_at_opening == 0)
            progress_at_opening = progress();
        break;
    case Writer::Untold:
    case Writer::Closed:
    case Writer::Gone:
        break;
    }
}

void WatchedLog::end_as(Writer last_writer, const Moment& moment)
{
    writer = last_writer;
    ended = moment.time;
    progress_at_opening = progress();
}

bool WatchedLog::misses_its_writer(const LogHolders& holders) const
{
    const bool had_one = writer == Writer::Running || writer == Writer::Previewer;
    return had_one ? !holders.holds(holder, data.state.identity)
                   : data.state.exists && progress() > progress_at_opening;
}

bool WatchedLog::runs() const
{
    return writer == Writer::Running || writer == Writer::Untold;
}

bool WatchedLog::is_over() const
{
    return writer == Writer::Unseen || writer == Writer::Closed || writer == Writer::Gone;
}

qint64 WatchedLog::size() const
{
    return data.state.size + events.state.size;
}

const StoryPhase& WatchedLog::phase(const Moment& moment) const
{
    return is_over() ? story.last_phase() : story.phase(moment.awake_ms);
}

TestView WatchedLog::view(const Moment& moment) const
{
    const auto since_ms = [&moment](qint64 then) {
        return double(moment.awake_ms - then) / 1000.0;
    };
    TestView seen;
    seen.writer = writer;
    seen.phase = phase(moment).phase;
    seen.phase_seconds = since_ms(phase(moment).arrival_ms);
    seen.row_seconds = since_ms(row_ms);
    seen.line_seconds = since_ms(line_ms);
    seen.botched_tests = story.botched_tests;
    seen.resets = story.resets;
    seen.first_reset_seconds = since_ms(story.first_reset_ms);
    seen.last_reset_seconds = since_ms(story.reset_ms);
    seen.telemetry_seconds = story.has_telemetry ? since_ms(story.telemetry_ms) : -1.0;
    return seen;
}
