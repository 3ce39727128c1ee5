// Replaces statvfs(), because a test cannot mount file systems with arbitrary block counts and block sizes.

#include <support/overrides/FixedVolume.h>

#include <support/overrides/NextFunction.h>

#include <QtCore/QtGlobal>

#include <atomic>

namespace Zelkor::Testing
{
namespace
{

std::atomic<struct statvfs const*>& Fixed()
{
    static std::atomic<struct statvfs const*> volume{nullptr};
    return volume;
}

} // namespace

FixedVolume::FixedVolume(struct statvfs const& volume)
{
    Fixed() = &volume;
}

FixedVolume::~FixedVolume()
{
    Fixed() = nullptr;
}

} // namespace Zelkor::Testing

// The C library's declaration uses reserved identifiers as parameter names. This definition uses other names.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" Q_DECL_EXPORT int statvfs(char const* path, struct statvfs* volume) noexcept
{
    static auto const next = Zelkor::Testing::NextFunction<int (*)(char const*, struct statvfs*)>("statvfs");
    struct statvfs const* const fixed = Zelkor::Testing::Fixed();
    if (!fixed) {
        return next(path, volume);
    }
    *volume = *fixed;
    return 0;
}
