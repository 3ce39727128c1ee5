#pragma once

// Modification times of files and folders.

#include <ctime>
#include <string>

namespace Zelkor::Testing
{

using Milliseconds = long long; // since 1970, or a duration

constexpr Milliseconds Second = 1000;
constexpr Milliseconds Hour = 3600 * Second;
constexpr Milliseconds Day = 24 * Hour;

/// The current time of the system's clock.
Milliseconds Now();

/// Returns \a time plus \a nanoseconds.
timespec ToTimespec(Milliseconds time, long nanoseconds);

/// Sets the modification time of a file or folder, or of a link itself. \a name is relative to the descriptor
/// \a folder.
void SetTimeAt(int folder, char const* name, Milliseconds time);
void SetTime(std::string const& path, Milliseconds time, long nanoseconds = 0);

/// Sets the modification time of \a path to \a age before now. Creating an entry changes the time of its folder, so
/// set the ages after everything is created.
void SetAge(std::string const& path, Milliseconds age);

/// Sets the age of all entries below \a path, without following links.
void SetAgeOfEntries(std::string const& path, Milliseconds age);

} // namespace Zelkor::Testing
