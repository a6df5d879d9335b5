#include "common/message_boxes.h"
#include "config/tool_tips.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace
{
std::unique_ptr<QTemporaryDir> folder;

void require(bool condition)
{
    if (!condition)
        std::abort();
}
}  // namespace

// In place of the boxes: nobody is here to close them.
int show_notice(const QString&)
{
    return 0;
}

int show_error(const QString&)
{
    return 0;
}

bool failed_assumption(bool condition, const QString&)
{
    return condition;
}

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    const QString place = QDir("/dev/shm").exists() ? QString("/dev/shm") : QDir::tempPath();
    folder = std::make_unique<QTemporaryDir>(place + "/fuzz-XXXXXX");
    // Texts that cannot be used are told on standard output: here that would be most of them.
    return std::freopen("/dev/null", "w", stdout) != nullptr ? 0 : 1;
}

/** A help document: its texts are taken, or not, each sentence on a line of its own. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    QFile file(folder->filePath("help.html"));
    require(file.open(QIODevice::WriteOnly));
    const QByteArray bytes(reinterpret_cast<const char*>(data), int(size));
    require(file.write(bytes) == bytes.size());
    file.close();

    ToolTips::tooltips.clear();
    ToolTips::load(file.fileName());
    // Other encodings hide the words from such a count, and entities repeat them.
    if (!bytes.contains('\0') && !bytes.contains("encoding") && !bytes.contains("ENTITY"))
        require(ToolTips::tooltips.size() <= bytes.count("dd"));
    for (const QString& text : qAsConst(ToolTips::tooltips))
        require(!text.contains(". "));
    return 0;
}
