#include "watch/log_index.h"
#include "watch/log_memory.h"
#include "watch/tells/event_json.h"
#include "watch/tells/event_text.h"
#include "watch/tells/mail_text.h"
#include "watch/tells/memory_file.h"

#include <QCoreApplication>

#include <cstdint>
#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static const QCoreApplication application(*argc, *argv);
    return 0;
}

namespace
{
void require(bool condition)
{
    if (!condition)
        std::abort();
}

/** In one line each, whatever stands in a file that somebody has written over. */
void judge(const Event& event)
{
    require(!title_of(event).contains('\n'));
    require(!header_text(title_of(event)).replace("\n ", "").contains('\n'));
    require(!one_line_json(event_json(event)).contains('\n'));
    for (const QByteArray& variable : event_environment(event))
        require(!variable.contains('\0'));
    require(!mail_of(event, "anna@example.org").contains('\0'));
}

/** The memory of what was told, with the messages that still wait. */
void read_memory(const QByteArray& bytes)
{
    Memory memory;
    if (!read_memory_document(bytes, memory))
        return;
    Memory again;
    require(read_memory_document(memory_document(memory), again));
    require(memory_document(again) == memory_document(memory));
    for (const Letter& letter : memory.letters)
        judge(letter.event);
    bool changed = false;
    const QDateTime now(QDate(2026, 11, 22), QTime(5, 19), Qt::UTC);
    for (const Event& event : take_look(memory, {}, now, TellRules(), changed))
        judge(event);
}

/** Which tests ran. */
void read_tests(const QByteArray& bytes)
{
    const QByteArray text = text_of(memory_in(bytes));
    require(text_of(memory_in(text)) == text);
}

/** The legs of earlier logs. */
void read_index(const QByteArray& bytes)
{
    const int file = ::memfd_create("index", MFD_CLOEXEC);
    require(::write(file, bytes.constData(), size_t(bytes.size())) == bytes.size());
    const LogIndex index(QString("/proc/self/fd/%1").arg(file));
    index.of_battery("Pack A");
    index.of_pack("Pack A", "1042");
    ::close(file);
}
}  // namespace

/** What kest-watch keeps: refused, or the same after it was saved and read again. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), int(size));
    read_memory(bytes);
    read_tests(bytes);
    read_index(bytes);
    return 0;
}
