#pragma once

#include <support/processes/ChildProcess.h>

#include <string>

namespace Zelkor::Testing
{

/// Mounts an empty file system in memory (tmpfs) at \a path. The mount is visible to this process only. \a options are
/// mount options of tmpfs, for example "size=1m".
void MountForThisProcess(std::string const& path, char const* options);

/// Starts a child process that calls MountForThisProcess() and then \a work. Returns the result of \a work.
template <class Work>
auto RunWithMount(std::string const& path, char const* options, Work const& work)
{
    return RunInChild([&] {
        MountForThisProcess(path, options);
        return work();
    });
}

} // namespace Zelkor::Testing
