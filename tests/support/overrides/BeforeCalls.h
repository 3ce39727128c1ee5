#pragma once

#include <functional>
#include <string>

namespace Zelkor::Testing
{

/// Calls a function immediately before each call to mkdir() and openat() while this object exists. The function can
/// change folders between two system calls of the library, as another process could. Its own system calls do not call
/// it again. Use the object on one thread.
class BeforeCalls
{
public:
    /// A call to mkdir() or openat(). The value of `flags` is 0 for mkdir().
    struct Call
    {
        std::string function;
        std::string path;
        int flags;
    };

    explicit BeforeCalls(std::function<void(Call const&)> function);
    ~BeforeCalls();
    BeforeCalls(BeforeCalls const&) = delete;
    BeforeCalls& operator=(BeforeCalls const&) = delete;
};

} // namespace Zelkor::Testing
