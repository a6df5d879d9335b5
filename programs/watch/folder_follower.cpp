#include "watch/folder_follower.h"

#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
constexpr uint32_t WANTED = IN_CREATE | IN_DELETE | IN_MODIFY | IN_MOVE | IN_CLOSE_WRITE |
                            IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
constexpr uint32_t FOLDER_IS_GONE = IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED | IN_UNMOUNT;
}  // namespace

FolderFollower::FolderFollower(QByteArray folder_path, bool with_notices)
    : path(std::move(folder_path)), notices_wanted(with_notices)
{
}

FolderFollower::~FolderFollower()
{
    end();
}

bool FolderFollower::by_notices() const
{
    return notices >= 0;
}

bool FolderFollower::is_the_same_folder() const
{
    struct stat status = {};
    return ::stat(path.constData(), &status) == 0 && status.st_dev == device &&
           status.st_ino == inode;
}

void FolderFollower::begin()
{
    struct stat status = {};
    if (!notices_wanted || ::stat(path.constData(), &status) != 0)
        return;
    notices = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (notices >= 0 && ::inotify_add_watch(notices, path.constData(), WANTED) < 0)
        end();
    device = status.st_dev;
    inode = status.st_ino;
}

void FolderFollower::end()
{
    if (notices >= 0)
        ::close(notices);
    notices = -1;
}

FolderNews FolderFollower::news()
{
    FolderNews found;
    // Whatever lies above the folder may have been renamed, of which no notice comes.
    if (by_notices() && !is_the_same_folder())
        end();
    if (!by_notices()) {
        begin();
        return found;
    }
    found.all = false;
    read_notices(found);
    return found;
}

void FolderFollower::read_notices(FolderNews& found)
{
    alignas(inotify_event) char buffer[65536];
    for (;;) {
        const ssize_t size = ::read(notices, buffer, sizeof buffer);
        if (size <= 0)
            return;
        for (ssize_t at = 0; at < size;) {
            const auto* const event = reinterpret_cast<const inotify_event*>(buffer + at);
            at += ssize_t(sizeof(inotify_event)) + event->len;
            if (event->mask & (IN_Q_OVERFLOW | FOLDER_IS_GONE))
                found.all = true;
            if (event->mask & FOLDER_IS_GONE) {
                end();
                return;
            }
            if (event->len > 0)
                found.names.insert(QByteArray(event->name));
        }
    }
}
