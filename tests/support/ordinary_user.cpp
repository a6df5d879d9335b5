#include "support/ordinary_user.h"

#include <sys/prctl.h>
#include <unistd.h>

namespace
{
constexpr uid_t nobody = 65534;

bool become(uid_t user)
{
    // The saved id stays root's: that is the way back. The real id is the one that access() looks at.
    const bool ok = setresuid(user, user, 0) == 0;
    // A change of user forbids tracing, and the leak checker traces its own process at the end.
    prctl(PR_SET_DUMPABLE, 1);
    return ok;
}
}  // namespace

OrdinaryUser::OrdinaryUser() : was_root(geteuid() == 0)
{
    if (was_root)
        become(nobody);
}

OrdinaryUser::~OrdinaryUser()
{
    if (was_root)
        become(0);
}

bool OrdinaryUser::active() const
{
    return geteuid() != 0 && getuid() != 0;
}
