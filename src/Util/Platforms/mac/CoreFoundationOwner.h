#pragma once

// Core Foundation's objects, released on every path.

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

namespace Zelkor::Util
{

/// Owns an object that a function with Create, Copy or Insert in its name has returned; null is nothing.
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
