#include "log/log_line.h"
#include "log/mender.h"

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
        ++count;
    }
    void write(const QByteArray& bytes) override
    {
        all += bytes;
    }

    int count = 0;
    QByteArray all;
};
}  // namespace

/** Any bytes: a copy or a reason, and what needs nothing is copied as it was. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    QByteArray bytes(reinterpret_cast<const char*>(data), int(size));
    QBuffer input(&bytes);
    input.open(QIODevice::ReadOnly);
    Parts parts;
    Mender mender(parts);
    while (!input.atEnd()) {
        QByteArray line = input.readLine();
        const bool complete = line.endsWith('\n');
        if (complete)
            line.chop(1);
        mender.take_line(line, complete);
    }
    mender.finish();
    const bool none = !mender.failure.isEmpty();
    if (!none && (parts.count == 0 || parts.count != mender.parts))
        std::abort();
    if (mender.untouched() && parts.all != bytes)
        std::abort();
    return 0;
}
