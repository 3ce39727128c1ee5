#pragma once

#include <Base/Version.h>

#include <QtCore/QString>
#include <QtTest/QTest>

namespace Zelkor::Core
{

/// How QCOMPARE shows a version.
inline char* toString(Version const& version)
{
    return QTest::toString(QStringLiteral("Version(%1, %2, %3, %4)")
                               .arg(version.GetMajor())
                               .arg(version.GetMinor())
                               .arg(version.GetThird())
                               .arg(version.GetBuild()));
}

} // namespace Zelkor::Core
