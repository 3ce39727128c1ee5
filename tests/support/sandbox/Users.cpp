#include <support/sandbox/Users.h>

#include <support/sandbox/Folders.h>

#include <grp.h>
#include <unistd.h>

namespace Zelkor::Testing
{

void BecomeUser(Identity const& identity)
{
    Check(setgroups(identity.groups.size(), identity.groups.data()));
    Check(setresgid(identity.group, identity.effectiveGroup, identity.effectiveGroup));
    Check(setresuid(identity.user, identity.effectiveUser, identity.effectiveUser));
}

void BecomeOrdinaryUser()
{
    if (geteuid() == RootUser) {
        BecomeUser({Nobody, Nobody, Nobody, Nobody, {}});
    }
}

} // namespace Zelkor::Testing
