#pragma once

// Releases Core Foundation objects automatically.

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

namespace Zelkor::Util
{

/// Owns a Core Foundation object and releases it on destruction.
///
/// The object must be the result of a function with "Create", "Copy" or "Insert" in its name, because only these
/// functions transfer ownership to the caller. The object may be null.
template <class Ref>
class CoreFoundationOwner
{
public:
    explicit CoreFoundationOwner(Ref object = nullptr)
        : object_(object)
    {}

    ~CoreFoundationOwner()
    {
        if (object_) {
            CFRelease(object_);
        }
    }

    CoreFoundationOwner(CoreFoundationOwner&& other) noexcept
        : object_(std::exchange(other.object_, nullptr))
    {}

    CoreFoundationOwner& operator=(CoreFoundationOwner&&) = delete;

    explicit operator bool() const { return object_ != nullptr; }
    Ref Get() const { return object_; }

private:
    Ref object_;
};

} // namespace Zelkor::Util
