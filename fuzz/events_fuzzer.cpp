#include "records/event_log.h"
#include "records/line_cutter.h"
#include "records/running_log.h"
#include "records/test_story.h"
#include "records/test_view.h"

#include <QBuffer>
#include <QCoreApplication>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static const QCoreApplication application(*argc, *argv);
    return 0;
}

namespace
{
/** What is told of a log that came in pieces of this size. */
struct Told
{
    Told(const QByteArray& bytes, int size)
    {
        qint64 time = 0;
        LineCutter cutter;
        for (int at = 0; at < bytes.size(); at += size)
            cutter.feed(bytes.mid(at, size), [&](const QByteArray& line) {
                const EventLine event = read_event_line(QString::fromLocal8Bit(line));
                changes += event.kind == EventKind::PhaseChange ? 1 : 0;
                story.take(event, time += 1000);
            });
    }

    bool same_as(const Told& other) const
    {
        return changes == other.changes && story.empty == other.story.empty &&
               story.botched_tests == other.story.botched_tests &&
               story.discharges == other.story.discharges && story.resets == other.story.resets &&
               story.last_phase().text == other.story.last_phase().text;
    }

    TestStory story;
    int changes = 0;
};

/** Whatever a phase is, it is found at one thing that a test does, and at no two of them. */
void judge(const TestStory& story)
{
    TestView view;
    view.writer = Writer::Running;
    view.phase = story.phase(0).phase;
    view.botched_tests = story.botched_tests;
    view.resets = story.resets;
    view.row_seconds = 1000.0;
    const QList<Condition> found = conditions_of(view, 30.0);
    if (found.isEmpty() != (view.phase == TestPhase::Unknown))
        std::abort();
    for (int i = 0; i < found.size(); ++i)
        if ((found.at(i) <= Condition::Done) != (i == 0))
            std::abort();
}
}  // namespace

/** An event log: the same however it comes in pieces, and as the reader of whole ones has it. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    QByteArray bytes(reinterpret_cast<const char*>(data), int(size));
    const Told whole(bytes, 1 << 20);
    if (!whole.same_as(Told(bytes, 1 + int(size) % 7)))
        std::abort();
    judge(whole.story);
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly | QIODevice::Text);
    const EventLog log = read_event_log(buffer);
    if (log.changes.size() < whole.changes && !bytes.contains('\0') && !bytes.contains('\r'))
        std::abort();
    RunningLog running;
    for (const QByteArray& line : bytes.split('\n'))
        running.take_line(line);
    return 0;
}
