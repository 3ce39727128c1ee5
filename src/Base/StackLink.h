#pragma once

// Private to the library: a chain of the calls of one function that are running on a thread.

#include <utility>

namespace Zelkor
{

/// Links the objects of type \a T on one thread's stack into a chain, the innermost first.
///
/// A function that calls foreign code can be re-entered, and that code can destroy what the outer call works on. An
/// object of \a T per call, derived from this class, lets the foreign code find the running calls and adjust them.
template <class T>
class StackLink
{
public:
    StackLink(StackLink const&) = delete;
    StackLink& operator=(StackLink const&) = delete;

    /// Returns the next outer object of the chain, or null.
    T* Outer() const { return outer_; }

    /// Leaves the head of the chain unchanged when this object is destroyed. Required if the head is destroyed first.
    void Detach() { innermost_ = nullptr; }

protected:
    /// Adds this object to the chain whose head is \a innermost.
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
