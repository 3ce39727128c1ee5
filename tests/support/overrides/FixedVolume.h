#pragma once

#include <sys/statvfs.h>

namespace Zelkor::Testing
{

/// Makes statvfs() return the same volume information for all paths. After the destruction of this object, statvfs()
/// returns the real information again.
class FixedVolume
{
public:
    /// \param volume  The information that statvfs() returns. It must outlive this object.
    explicit FixedVolume(struct statvfs const& volume);
    ~FixedVolume();
    FixedVolume(FixedVolume const&) = delete;
    FixedVolume& operator=(FixedVolume const&) = delete;
};

} // namespace Zelkor::Testing
