#pragma once

// Private to the library. Records the nested calls of a function on one thread, so that other code can find the running
// calls.

#include <utility>

namespace Zelkor
{

/// Base class for a type \a T: `struct T : StackLink<T>`. Links the objects of type \a T on the stack of one thread
/// into a chain. The chain begins with the innermost object, which was created last.
///
/// This class is for a function that calls foreign code, for example a callback. The foreign code can call the function
/// again, or destroy an object that the function still uses. Therefore, each call of the function creates an object of
/// type \a T on the stack. A nested call, or the destructor of such an object, can then find and modify all objects in
/// the chain.
template <class T>
class StackLink
{
public:
    StackLink(StackLink const&) = delete;
    StackLink& operator=(StackLink const&) = delete;

    /// Returns the next object of the chain, which was created before this object. Returns null if this object is the
    /// outermost object.
    T* Outer() const { return outer_; }

    /// Prevents the destructor from writing to the variable that was passed to the constructor. Must be called if that
    /// variable is destroyed before this object.
    void Detach() { innermost_ = nullptr; }

protected:
    /// Adds this object to a chain. \a innermost is a variable that points to the innermost object of the chain. The
    /// constructor sets this variable to the address of this object. The variable must exist until this object is
    /// destroyed or Detach() is called.
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
