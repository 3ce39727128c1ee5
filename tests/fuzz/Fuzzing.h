#pragma once

// Code that all fuzzers share. Each fuzzer decodes the bytes of an input, calls the library, and compares the results
// with a second implementation of the documented behaviour.

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtTest/QTest>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace Zelkor::Testing
{

/// Decodes the bytes of an input, from the first to the last. After the last byte, all functions return zero or an
/// empty string.
class FuzzInput
{
public:
    FuzzInput(std::uint8_t const* data, std::size_t size)
        : bytes_(reinterpret_cast<char const*>(data), size)
    {}

    bool AtEnd() const { return position_ == bytes_.size(); }

    /// Returns the next byte.
    std::uint8_t Byte() { return Number<std::uint8_t>(); }

    /// Returns true if the next byte is odd, for example the character '1'.
    bool Flag() { return Byte() % 2 == 1; }

    /// Returns the next integer. Its bytes are in the order of the machine.
    template <class Integer>
    Integer Number()
    {
        Integer number = 0;
        std::size_t const size = std::min(sizeof number, bytes_.size() - position_);
        std::memcpy(&number, bytes_.data() + position_, size);
        position_ += size;
        return number;
    }

    /// Returns the bytes up to the next line feed, and skips the line feed.
    std::string Line()
    {
        std::size_t const end = std::min(bytes_.find('\n', position_), bytes_.size());
        std::string line = bytes_.substr(position_, end - position_);
        position_ = std::min(end + 1, bytes_.size());
        return line;
    }

    /// Returns the remaining bytes.
    std::string Rest()
    {
        std::string rest = bytes_.substr(position_);
        position_ = bytes_.size();
        return rest;
    }

private:
    std::string bytes_;
    std::size_t position_ = 0;
};

/// Returns the folder in which a fuzzer may create files. The folder is removed when the program exits.
std::string const& FuzzFolder();

/// Returns a description of \a value for failure messages.
template <class T>
QByteArray Describe(T const& value)
{
    using QTest::toString;
    std::unique_ptr<char[]> const text(toString(value));
    return text ? QByteArray(text.get()) : QByteArray("(unknown)");
}

inline QByteArray Describe(std::string const& text)
{
    return Describe(QByteArray::fromStdString(text));
}

/// Prints both values and stops the program if \a actual and \a expected are not equal. \a what names the value.
template <class T>
void RequireEqual(T const& actual, T const& expected, char const* what)
{
    if (!(actual == expected)) {
        std::fprintf(stderr, "%s: actual %s, expected %s\n", what, Describe(actual).constData(),
                     Describe(expected).constData());
        std::abort();
    }
}

} // namespace Zelkor::Testing

/// Tests one input. libFuzzer and Replay.cpp call this function.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

/// Prepares the process: it becomes an ordinary user, and uses UTF-8 and UTC. libFuzzer and Replay.cpp call this
/// function once, before all inputs.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
