#pragma once

#include "records/line_cutter.h"
#include "records/running_log.h"
#include "records/test_story.h"
#include "records/test_view.h"
#include "watch/file_tail.h"
#include "watch/log_holders.h"
#include "watch/moment.h"
#include "watch/situation.h"

#include <QMap>

#include <memory>

/** What outlives a restart of the watch. */
struct LogMemory
{
    QByteArray path;
    FileIdentity identity;
    Holder holder;
    Writer writer = Writer::Unseen;
    QDateTime ended;  ///< UTC; invalid while the test runs
    bool same_boot =
        true;  ///< devices of files may have other numbers after a start of the machine
};

/** A test as its two logs show it, from look to look. */
class WatchedLog
{
public:
    WatchedLog(const QByteArray& log_path, bool writer_may_hide);
    /** One that ran when the watch was ended, or had ended before. */
    WatchedLog(const LogMemory& memory, bool writer_may_hide);

    /** Reads what is new in either log. */
    void read(const Moment& moment);
    /** Finds out who writes; to be called behind read. */
    void judge(const Moment& moment, const LogHolders& holders);
    /** The writer of a running test, or of one that grows, is not among the known holders. */
    bool misses_its_writer(const LogHolders& holders) const;
    /** The file goes by another name now. */
    void rename(const QByteArray& new_path);

    QList<Situation> situations(const Moment& moment, int quiet_seconds);
    TestView view(const Moment& moment) const;
    TestFacts facts(const Moment& moment) const;
    /** The one that counts: of a test that is over the last, as nothing can follow it. */
    const StoryPhase& phase(const Moment& moment) const;

    /** Whether the test has come to an end, or nobody was ever seen to write. */
    bool is_over() const;
    bool runs() const;
    LogMemory memory() const;
    /** Bytes of both logs. */
    qint64 size() const;

    const bool may_hide;  ///< nobody may be seen to write what others write here
    QByteArray path;
    FileTail data;
    FileTail events;
    std::unique_ptr<RunningLog> log;
    TestStory story;
    Writer writer = Writer::Unseen;
    Holder holder;
    QDateTime ended;         ///< UTC
    bool first_look = true;  ///< what is read now stood there before the watch came

private:
    /** When a line was written, by the clock that never steps and by the other. */
    struct Arrival
    {
        qint64 awake_ms = 0;
        QDateTime time;  ///< UTC
    };

    void begin_data();
    void begin_events();
    void read_data(const Moment& moment);
    void read_events(const Moment& moment);
    void take_event(const QByteArray& text, const Moment& moment);
    Arrival arrival_of(const EventLine& line, const Moment& moment) const;
    void take_holder(const Holder& new_holder, const Moment& moment);
    void lose_holder(const Moment& moment, const LogHolders& holders);
    void end_as(Writer last_writer, const Moment& moment);
    bool written_since_opened(const Moment& moment) const;
    qint64 progress() const;
    QDateTime since(Condition condition, const TestView& seen, const Moment& moment);

    LineCutter data_lines;
    LineCutter event_lines;
    qint64 changes = 0;  ///< of phase
    qint64 progress_at_opening = 0;
    qint64 row_ms = 0;   ///< arrival of the last row, or of the last change if that was later
    qint64 line_ms = 0;  ///< arrival of anything
    QMap<Condition, QDateTime> since_when;
};
