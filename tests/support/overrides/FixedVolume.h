#pragma once

#include <sys/statvfs.h>

namespace Zelkor::Testing
{

/// Makes statvfs() return the same information for all paths. The destructor restores the real information.
class FixedVolume
{
public:
    /// \a volume must outlive this object.
    explicit FixedVolume(struct statvfs const& volume);
    ~FixedVolume();
    FixedVolume(FixedVolume const&) = delete;
    FixedVolume& operator=(FixedVolume const&) = delete;
};

} // namespace Zelkor::Testing
