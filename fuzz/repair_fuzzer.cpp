#include "log/log_line.h"
#include "log/mender.h"
#include "log/old_tail.h"

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
class Parts final : public MendedParts
{
public:
    void begin_part() override
    {
        logs << QByteArray();
    }
    void write(const QByteArray& bytes) override
    {
        logs.last() += bytes;
    }

    QList<QByteArray> logs;
};

QByteArray without_end(QByteArray line)
{
    if (line.endsWith('\n'))
        line.chop(1);
    return line;
}
}  // namespace

/** Any bytes: a copy that loads or a reason, and what needs nothing is copied as it was. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    QByteArray bytes(reinterpret_cast<const char*>(data), int(size));
    QBuffer input(&bytes);
    input.open(QIODevice::ReadOnly);
    const EventLog no_events;
    OldTail tail(no_events);
    while (!input.atEnd())
        tail.take_line(without_end(input.readLine()));
    input.seek(0);
    Parts parts;
    Mender mender(parts);
    mender.expect_tail(tail.first_line());
    while (!input.atEnd()) {
        const QByteArray line = input.readLine();
        mender.take_line(without_end(line), line.endsWith('\n'));
    }
    mender.finish();
    if (!mender.failure.isEmpty())
        return 0;
    if (parts.logs.isEmpty() || parts.logs.size() != mender.parts)
        std::abort();
    for (const QByteArray& log : parts.logs)
        if (!loads(log))
            std::abort();
    if (mender.untouched() && parts.logs != QList<QByteArray>{bytes})
        std::abort();
    return 0;
}
