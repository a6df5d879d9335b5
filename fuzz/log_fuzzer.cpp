#include "support/literal_log_reader.h"
#include "support/read_log.h"

#include <QCoreApplication>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static const QCoreApplication application(*argc, *argv);
    return 0;
}

/** A whole file, of either generation: read as the rules say, or refused at the same line. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), int(size));
    const ReadLog log(bytes);
    ReadLog literal{QByteArray()};
    read_literally(bytes, literal);
    if (!log.same_as(literal))
        std::abort();
    return 0;
}
