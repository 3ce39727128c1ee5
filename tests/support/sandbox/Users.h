#pragma once

// Runs functions as another user. RunAs() requires root. If this process does not run as root, RunAsOrdinaryUser() runs
// the function as the current user.

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

// IDs of two users and of their groups. The system does not need accounts with these IDs. Most tests run the library as
// the user Us.
constexpr uid_t Us = 1001;
constexpr uid_t Them = 1002;
constexpr gid_t OurGroup = 2001;
constexpr gid_t TheirGroup = 2002;

/// If this process runs as root, RunAsOrdinaryUser() uses this number as the user ID and as the group ID.
constexpr uid_t Nobody = 65534;

/// Applies \a identity to this process: sets its user IDs, group IDs and supplementary groups. Requires root.
void BecomeUser(Identity const& identity);

/// If this process runs as root, changes its user and its group to Nobody. Otherwise does nothing.
void BecomeOrdinaryUser();

/// Runs \a work in a child process with the user and the groups of \a identity. Returns the result of \a work. Requires
/// root.
template <class Work>
auto RunAs(Identity const& identity, Work const& work)
{
    return RunInChild([&] {
        BecomeUser(identity);
        return work();
    });
}

/// Runs \a work in a child process without root privileges. Returns the result of \a work.
template <class Work>
auto RunAsOrdinaryUser(Work const& work)
{
    return RunInChild([&] {
        BecomeOrdinaryUser();
        return work();
    });
}

} // namespace Zelkor::Testing
