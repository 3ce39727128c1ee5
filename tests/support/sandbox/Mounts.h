#pragma once

#include <support/processes/ChildProcess.h>

#include <string>

namespace Zelkor::Testing
{

/// Mounts an empty file system in memory at \a path for this process only. \a options are mount options of tmpfs, such
/// as "size=1m".
void MountForThisProcess(std::string const& path, char const* options);

/// Runs \a work in a child process that has an empty file system in memory at \a path. Returns its result.
template <class Work>
auto RunWithMount(std::string const& path, char const* options, Work const& work)
{
    return RunInChild([&] {
        MountForThisProcess(path, options);
        return work();
    });
}

} // namespace Zelkor::Testing
