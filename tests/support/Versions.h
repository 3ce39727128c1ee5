#pragma once

#include <Base/Version.h>

#include <QtCore/QString>
#include <QtTest/QTest>

namespace Zelkor::Core
{

/// Formats \a version for the failure messages of QCOMPARE. QtTest deletes the returned string.
inline char* toString(Version const& version)
{
    return QTest::toString(QStringLiteral("Version(%1, %2, %3, %4)")
                               .arg(version.GetMajor())
                               .arg(version.GetMinor())
                               .arg(version.GetThird())
                               .arg(version.GetBuild()));
}

} // namespace Zelkor::Core
