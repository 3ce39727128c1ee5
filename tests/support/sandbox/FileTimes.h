#pragma once

// Functions that read the system's clock and set the modification times of files and folders.

#include <ctime>
#include <string>

namespace Zelkor::Testing
{

using Milliseconds = long long; // a duration, or a time since the start of 1970 in UTC

constexpr Milliseconds Second = 1000;
constexpr Milliseconds Hour = 3600 * Second;
constexpr Milliseconds Day = 24 * Hour;

/// Returns the current time of the system's clock.
Milliseconds Now();

/// Returns \a time plus \a nanoseconds as a timespec.
timespec ToTimespec(Milliseconds time, long nanoseconds);

/// Sets the modification time of a file, folder or link. For a link, changes the link itself and not its target. In
/// SetTimeAt(), \a folder is a file descriptor of a folder, and \a name is a path relative to this folder. SetTime()
/// adds \a nanoseconds to \a time.
void SetTimeAt(int folder, char const* name, Milliseconds time);
void SetTime(std::string const& path, Milliseconds time, long nanoseconds = 0);

/// Sets the modification time of \a path to the current time minus \a age. If \a path is a folder, create all entries
/// in it before this call: creating an entry changes the modification time of the folder.
void SetAge(std::string const& path, Milliseconds age);

/// Calls SetAge() for all entries below \a path. Does not follow links.
void SetAgeOfEntries(std::string const& path, Milliseconds age);

} // namespace Zelkor::Testing
