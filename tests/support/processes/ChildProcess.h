#pragma once

// Work that is done in a child process: as somebody else, or in other surroundings.

#include <QtCore/QByteArray>

#include <functional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace Zelkor::Testing
{

/// Runs \a work in a child process, after \a prepare, and returns its result.
QByteArray RunInFork(std::function<void()> const& prepare, std::function<QByteArray()> const& work);

struct Identity
{
    uid_t user;
    uid_t effectiveUser;
    gid_t group;
    gid_t effectiveGroup;
    std::vector<gid_t> groups;
};

constexpr uid_t RootUser = 0;
constexpr uid_t Us = 1001;
constexpr uid_t Them = 1002;
constexpr gid_t OurGroup = 2001;
constexpr gid_t TheirGroup = 2002;

/// Needs root, who alone may become anybody.
QByteArray RunAs(Identity const& who, std::function<QByteArray()> const& work);

/// Runs \a work in a child process that has a file system of its own at \a path.
QByteArray RunWithMount(std::string const& path, char const* options, std::function<QByteArray()> const& work);

} // namespace Zelkor::Testing
