#pragma once

// Availability checks that are compiled as Objective-C++, so that C++ tests can call them.

#include <QtCore/QString>

namespace Zelkor::Testing
{

bool IsAtLeast10_9();
bool IsAtLeast10_15();
bool IsAtLeast10_16();
bool IsAtLeast11();
bool IsNotAtLeast10_15();

/// Returns the system version from NSProcessInfo, for example "10.13.6".
QString VersionOfProcessInfo();

bool ProcessInfoIsAtLeast(long majorVersion, long minorVersion, long patchVersion);

} // namespace Zelkor::Testing
