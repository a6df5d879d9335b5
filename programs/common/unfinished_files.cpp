#include "programs/common/unfinished_files.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <sched.h>
#include <unistd.h>

namespace UnfinishedFiles
{
namespace
{
constexpr int MOST_FILES = 256;
constexpr int SIGNALS[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGXCPU};

// Plain memory that a signal handler may read. It changes within steps only, and is read when all of
// them are over: no name is freed, and another put in its place, while it is used.
std::atomic<char*> names[MOST_FILES];

std::atomic<bool> ending{false};
std::atomic<int> steps{0};  // that are under way

extern "C" void remove_unfinished_files(int signal_number)
{
    ending = true;
    while (steps > 0)
        ::sched_yield();
    for (std::atomic<char*>& name : names)
        if (const char* path = name.load())
            ::unlink(path);
    std::signal(signal_number, SIG_DFL);
    ::raise(signal_number);
}
}  // namespace

void remove_at_signals()
{
    for (const int signal_number : SIGNALS)
        // What was ignored before, as behind nohup, stays so.
        if (std::signal(signal_number, remove_unfinished_files) == SIG_IGN)
            std::signal(signal_number, SIG_IGN);
    // A file beyond the limit of its user is an error like a full disk, with a sentence.
    std::signal(SIGXFSZ, SIG_IGN);
}

int note(const QByteArray& path)
{
    char* const copy = ::strdup(path.constData());
    for (int i = 0; i < MOST_FILES; ++i) {
        char* nobody = nullptr;
        if (names[i].compare_exchange_strong(nobody, copy))
            return i;
    }
    std::free(copy);
    return -1;
}

void forget(int place)
{
    if (place >= 0)
        std::free(names[place].exchange(nullptr));
}

Step::Step()
{
    // Not in this thread: a handler in the midst of a step would wait for itself.
    sigset_t held = {};
    ::sigemptyset(&held);
    for (const int signal_number : SIGNALS)
        ::sigaddset(&held, signal_number);
    ::pthread_sigmask(SIG_BLOCK, &held, &mask_before);
    ++steps;
    while (ending) {
        --steps;
        ::pause();
        ++steps;
    }
}

Step::~Step()
{
    --steps;
    ::pthread_sigmask(SIG_SETMASK, &mask_before, nullptr);
}
}  // namespace UnfinishedFiles
