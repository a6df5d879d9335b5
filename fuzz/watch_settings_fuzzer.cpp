#include "watch/tells/mail_text.h"
#include "watch/watch_options.h"

#include <QCoreApplication>
#include <QUrl>

#include <cstdint>
#include <cstdlib>

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

bool is_within(int number, int least, int most)
{
    return least <= number && number <= most;
}

void judge(const TellSettings& telling)
{
    require(is_within(telling.run_seconds, 1, 86400));
    require(is_within(telling.remind_minutes, 0, 10080));
    require(telling.quiet_hours.from.isValid() == telling.quiet_hours.to.isValid());
    for (const QString& command : telling.commands)
        require(!command.isEmpty() && !command.contains(QChar::Null));
    for (const QString& address : telling.addresses)
        require(is_mail_address(address));
    for (const QString& url : telling.urls)
        require(!QUrl(url).host().isEmpty());
}
}  // namespace

/** A settings file of kest-watch: refused with one sentence, or all of it within its bounds. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), int(size));
    WatchOptions options;
    const QString wrong = take_settings(bytes, options);
    require(wrong.isEmpty() || (wrong.startsWith("line ") && wrong.endsWith('.')));
    require(!wrong.contains('\n'));
    // What stood before a wrong line is taken.
    require(is_within(options.quiet_seconds, 1, 86400));
    judge(options.telling);
    return 0;
}
