#pragma once

#include <QByteArray>
#include <QSet>

#include <sys/types.h>

/** What has happened in a folder since it was asked last. */
struct FolderNews
{
    bool all = true;         ///< anything may have happened
    QSet<QByteArray> names;  ///< else to these files
};

/**
 * Tells which files of a folder to look at: by the system's own notices where it gives some, and
 * everything each time where it does not. The folder may go and come back.
 */
class FolderFollower
{
public:
    /** @param with_notices false: as on a network folder, where what other machines do is not noticed */
    FolderFollower(QByteArray folder_path, bool with_notices);
    ~FolderFollower();
    FolderFollower(const FolderFollower&) = delete;
    FolderFollower& operator=(const FolderFollower&) = delete;

    FolderNews news();
    bool by_notices() const;

private:
    bool is_the_same_folder() const;
    void begin();
    void end();
    void read_notices(FolderNews& found);

    QByteArray path;
    bool notices_wanted;
    int notices = -1;
    dev_t device = 0;
    ino_t inode = 0;
};
