#include "watch/folder_probe.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <sys/statvfs.h>
#include <thread>

namespace
{
constexpr std::chrono::seconds PATIENCE(5);

/** How much room there is: of all that may be asked, nobody keeps the answer to this for later. */
void ask_the_system(const QByteArray& folder)
{
    struct statvfs system = {};
    ::statvfs(folder.constData(), &system);
}
}  // namespace

struct FolderProbe::Question
{
    std::mutex mutex;
    std::condition_variable change;
    bool answered = false;
};

FolderProbe::FolderProbe(QByteArray folder_path, Ask how_to_ask)
    : folder(std::move(folder_path)), ask(how_to_ask ? std::move(how_to_ask) : ask_the_system)
{
}

bool FolderProbe::answers()
{
    const bool is_new = open == nullptr;
    if (is_new) {
        open = std::make_shared<Question>();
        std::thread([question = open, to_ask = ask, path = folder] {
            to_ask(path);
            const std::lock_guard<std::mutex> lock(question->mutex);
            question->answered = true;
            question->change.notify_all();
        }).detach();
    }
    std::unique_lock<std::mutex> lock(open->mutex);
    const bool answered = open->change.wait_for(
        lock, is_new ? PATIENCE : std::chrono::seconds::zero(), [this] { return open->answered; });
    lock.unlock();
    if (answered)
        open.reset();
    return answered;
}
