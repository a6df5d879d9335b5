#pragma once

#include <sys/types.h>

/**
 * Makes permission bits bind: for root they do not, so the process is an ordinary user while this lives.
 *
 * Files for such a test are to be made while it lives, below a directory that everyone may enter.
 */
class OrdinaryUser
{
public:
    OrdinaryUser();
    ~OrdinaryUser();
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

    /** False if the system refused; the test then cannot show anything and has to fail. */
    bool active() const;

private:
    bool was_root = false;
};
