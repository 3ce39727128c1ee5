// Replaces mkdir() and openat(). Without this, a test could change a folder between two system calls of the library
// only by chance.

#include <support/overrides/BeforeCalls.h>

#include <support/overrides/NextFunction.h>
#include <support/overrides/OpenMode.h>

#include <QtCore/QtGlobal>

#include <utility>

#include <sys/stat.h>

namespace Zelkor::Testing
{
namespace
{

std::function<void(BeforeCalls::Call const&)>& CurrentFunction()
{
    static std::function<void(BeforeCalls::Call const&)> function;
    return function;
}

void Announce(BeforeCalls::Call const& call)
{
    // The function is empty while it is running, so that its own calls do not call it again.
    if (auto const function = std::exchange(CurrentFunction(), nullptr)) {
        function(call);
        CurrentFunction() = function;
    }
}

} // namespace

BeforeCalls::BeforeCalls(std::function<void(Call const&)> function)
{
    CurrentFunction() = std::move(function);
}

BeforeCalls::~BeforeCalls()
{
    CurrentFunction() = nullptr;
}

} // namespace Zelkor::Testing

// The C library's declarations use reserved identifiers as parameter names. These definitions use other names.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)

extern "C" Q_DECL_EXPORT int mkdir(char const* path, mode_t mode) noexcept
{
    Zelkor::Testing::Announce({"mkdir", path, 0});
    return Zelkor::Testing::NextFunction<int (*)(char const*, mode_t)>("mkdir")(path, mode);
}

extern "C" Q_DECL_EXPORT int openat(int folder, char const* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    mode_t const mode = Zelkor::Testing::OpenMode(flags, arguments);
    va_end(arguments);
    Zelkor::Testing::Announce({"openat", path, flags});
    return Zelkor::Testing::NextFunction<int (*)(int, char const*, int, ...)>("openat")(folder, path, flags, mode);
}

// NOLINTEND(readability-inconsistent-declaration-parameter-name)
