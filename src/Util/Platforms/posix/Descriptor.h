#pragma once

#include <utility>

#include <unistd.h>

namespace Zelkor
{
namespace Util
{

/// Owns a file descriptor and closes it in the destructor. A negative number means that no file is open.
class Descriptor
{
public:
    explicit Descriptor(int number)
        : number_(number)
    {}
    Descriptor(Descriptor&& other) noexcept
        : number_(other.Release())
    {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor()
    {
        if (IsOpen()) {
            close(number_);
        }
    }

    bool IsOpen() const { return number_ >= 0; }
    int Number() const { return number_; }

    /// Returns the number of the file descriptor. The caller must close the file descriptor.
    int Release() { return std::exchange(number_, -1); }

private:
    int number_;
};

} // namespace Util
} // namespace Zelkor
