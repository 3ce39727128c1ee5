#include <support/TestCase.h>

#include <Base/SystemVersion.h>

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtTest/QtTest>

using Zelkor::Core::GetSystemVersion;
using Zelkor::Core::Version;

class SystemVersionTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void readsTheVersionOfTheSystem()
    {
        QFile file(QStringLiteral("/etc/os-release"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        static QRegularExpression const line(QStringLiteral("^VERSION_ID=\"?(\\d+)(?:\\.(\\d+))?"),
                                             QRegularExpression::MultilineOption);
        QRegularExpressionMatch const match = line.match(QString::fromUtf8(file.readAll()));
        QVERIFY(match.hasMatch());
        Version const expected(match.captured(1).toUInt(), match.captured(2).toUInt());
        QVERIFY(GetSystemVersion() == expected);
    }
};

ZQTUTIL_TEST_MAIN(SystemVersionTest)

#include "SystemVersionTest.moc"
