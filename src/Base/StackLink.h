#pragma once

// Private to the library. Records the nested calls of one function on a thread, so that other code can find them.

#include <utility>

namespace Zelkor
{

/// Base class of \a T. Links the objects of type \a T on one thread's stack into a chain. The chain begins with the
/// object that was created last, the innermost one.
///
/// Use this class in a function that calls foreign code, for example a callback. The foreign code can call the function
/// again, and it can destroy objects that the function still uses. Each call of the function creates a \a T on the
/// stack. A nested call or a destructor can then find the running calls through the chain and adjust their \a T.
template <class T>
class StackLink
{
public:
    StackLink(StackLink const&) = delete;
    StackLink& operator=(StackLink const&) = delete;

    /// Returns the next outer object of the chain, or null.
    T* Outer() const { return outer_; }

    /// Prevents the destructor from writing to the pointer to the innermost object. Must be called if that pointer is
    /// destroyed before this object.
    void Detach() { innermost_ = nullptr; }

protected:
    /// Adds this object to a chain. \a innermost is the pointer to the innermost object of the chain; it must exist
    /// until this object is destroyed or Detach() is called.
    explicit StackLink(T*& innermost)
        : innermost_(&innermost)
        , outer_(std::exchange(innermost, static_cast<T*>(this)))
    {}

    ~StackLink()
    {
        if (innermost_) {
            *innermost_ = outer_;
        }
    }

private:
    T** innermost_;
    T* const outer_;
};

} // namespace Zelkor
