#include "records/log_check.h"
#include "station/logs/log_reader.h"
#include "support/read_log.h"

#include <QCoreApplication>
#include <QTextStream>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static const QCoreApplication application(*argc, *argv);
    return 0;
}

/** A whole file, of either generation: the check says of it what a station would. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), int(size));
    const ReadLog log(bytes);
    LogFile file;
    LogCheck check(file);
    QTextStream stream(bytes);
    check.finish(read_log(stream, check));
    qint64 rows = 0;
    for (const Cycle& cycle : file.cycles)
        rows += file.sections[cycle.section].count.rows;
    const bool same = file.accepted == log.accepted &&
                      file.accepted == file.refusal.reason.isEmpty() &&
                      file.cycles.size() == int(log.cycles.size()) && rows == log.row_count();
    if (!same)
        std::abort();
    return 0;
}
