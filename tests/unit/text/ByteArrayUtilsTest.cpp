#include <support/ProgrammingError.h>
#include <support/TestCase.h>

#include <Util/ByteArrayUtils.h>

#include <QtTest/QtTest>

#include <limits>
#include <numeric>
#include <stdexcept>
#include <type_traits>
#include <vector>

using Zelkor::Testing::CatchProgrammingError;
using Zelkor::Util::QByteArrayToVectorByte;
using Zelkor::Util::VectorByteToQByteArray;

using Bytes = std::vector<unsigned char>;

static_assert(std::is_same_v<decltype(&VectorByteToQByteArray), QByteArray (*)(Bytes const&)>);
static_assert(std::is_same_v<decltype(&QByteArrayToVectorByte), Bytes (*)(QByteArray const&)>);

Q_DECLARE_METATYPE(Bytes)

namespace
{

Bytes AllByteValues()
{
    Bytes bytes(256);
    std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(0));
    return bytes;
}

QByteArray AllByteValuesInQByteArray()
{
    QByteArray array;
    for (int byte = 0; byte < 256; ++byte) {
        array += static_cast<char>(byte);
    }
    return array;
}

} // namespace

class ByteArrayUtilsTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void convertsBothWays_data()
    {
        QTest::addColumn<Bytes>("bytes");
        QTest::addColumn<QByteArray>("array");
        QTest::newRow("empty") << Bytes() << QByteArray();
        QTest::newRow("one byte") << Bytes{0x7F} << QByteArray("\x7F");
        QTest::newRow("single NUL") << Bytes{0} << QByteArray(1, '\0');
        QTest::newRow("NUL inside") << Bytes{'a', 0, 'b'} << QByteArray("a\0b", 3);
        QTest::newRow("NUL at the end") << Bytes{'a', 0} << QByteArray("a\0", 2);
        QTest::newRow("non-ASCII bytes") << Bytes{0x80, 0xFF} << QByteArray("\x80\xFF");
        QTest::newRow("all byte values") << AllByteValues() << AllByteValuesInQByteArray();
        QTest::newRow("a million bytes") << Bytes(1000000, 0xA5) << QByteArray(1000000, '\xA5');
    }

    void convertsBothWays()
    {
        QFETCH(Bytes, bytes);
        QFETCH(QByteArray, array);
        QCOMPARE(VectorByteToQByteArray(bytes), array);
        QCOMPARE(QByteArrayToVectorByte(array), bytes);
    }

    void returnsTheSharedEmptyArrayForAnEmptyVector()
    {
        Bytes reserved;
        reserved.reserve(100);
        QByteArray const first = VectorByteToQByteArray(Bytes());
        QByteArray const second = VectorByteToQByteArray(reserved);
        QVERIFY(first.isEmpty());
        QCOMPARE(first.capacity(), 0);
        QVERIFY(!first.isDetached());
        QCOMPARE(static_cast<void const*>(first.constData()), static_cast<void const*>(second.constData()));
    }

    void copiesTheVectorDeeply()
    {
        Bytes bytes{'a', 'b'};
        QByteArray const array = VectorByteToQByteArray(bytes);
        bytes[0] = 'x';
        QCOMPARE(array, QByteArray("ab"));
        QVERIFY(array.isDetached());
    }

    void copiesTheArrayWithoutDetachingIt()
    {
        QByteArray array("ab");
        QByteArray shared;
        shared = array;
        Bytes bytes = QByteArrayToVectorByte(array);
        bytes[0] = 'x';
        QCOMPARE(array, QByteArray("ab"));
        QCOMPARE(static_cast<void const*>(array.constData()), static_cast<void const*>(shared.constData()));
    }

    void copiesAnArrayThatIsNotNulTerminated()
    {
        char const raw[] = {'a', 'b', 'c'};
        QCOMPARE(QByteArrayToVectorByte(QByteArray::fromRawData(raw, 2)), (Bytes{'a', 'b'}));
    }

    void rejectsAnArrayOfNegativeSize()
    {
        char const raw[] = {'a', 'b', 'c'};
        QByteArray const broken = QByteArray::fromRawData(raw + 1, -1);
        QCOMPARE(broken.size(), -1);
        QVERIFY_EXCEPTION_THROWN(QByteArrayToVectorByte(broken), std::length_error);
    }

    void rejectsMoreBytesThanAnArrayHolds()
    {
        Bytes const bytes(static_cast<std::size_t>(std::numeric_limits<int>::max()) + 1);
        auto const error = CatchProgrammingError<std::length_error>([&bytes] { VectorByteToQByteArray(bytes); });
        QVERIFY(!error.message.isEmpty());
        QVERIFY2(error.callStack.contains(QStringLiteral("VectorByteToQByteArray")), qPrintable(error.callStack));
        QCOMPARE(error.file, QStringLiteral("Util/ByteArrayUtils.cpp"));
        // Compilers put spaces at different positions in function names.
        QString const function = QString(error.function).remove(QLatin1Char(' '));
        QCOMPARE(function,
                 QStringLiteral("QByteArrayZelkor::Util::VectorByteToQByteArray(conststd::vector<unsignedchar>&)"));
        QVERIFY(error.line > 0);
    }
};

ZQTUTIL_TEST_MAIN(ByteArrayUtilsTest)
#include "ByteArrayUtilsTest.moc"
