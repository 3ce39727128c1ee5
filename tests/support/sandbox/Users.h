#pragma once

// Runs functions as another user. RunAs() requires root. RunAsOrdinaryUser() also works without root: it then keeps the
// current user.

#include <support/processes/ChildProcess.h>

#include <vector>

#include <sys/types.h>

namespace Zelkor::Testing
{

struct Identity
{
    uid_t user;
    uid_t effectiveUser;
    gid_t group;
    gid_t effectiveGroup;
    std::vector<gid_t> groups; // supplementary groups
};

constexpr uid_t RootUser = 0;

// Two users and their groups, which need no accounts. Most tests run the library as Us.
constexpr uid_t Us = 1001;
constexpr uid_t Them = 1002;
constexpr gid_t OurGroup = 2001;
constexpr gid_t TheirGroup = 2002;

/// The user that RunAsOrdinaryUser() becomes, and its group.
constexpr uid_t Nobody = 65534;

/// Gives this process the user and the groups of \a identity. Requires root.
void BecomeUser(Identity const& identity);

/// Drops root's privileges of this process, if it has them.
void BecomeOrdinaryUser();

/// Runs \a work in a child process with \a identity and returns its result. Requires root.
template <class Work>
auto RunAs(Identity const& identity, Work const& work)
{
    return RunInChild([&] {
        BecomeUser(identity);
        return work();
    });
}

/// Runs \a work in a child process without privileges and returns its result.
template <class Work>
auto RunAsOrdinaryUser(Work const& work)
{
    return RunInChild([&] {
        BecomeOrdinaryUser();
        return work();
    });
}

} // namespace Zelkor::Testing
