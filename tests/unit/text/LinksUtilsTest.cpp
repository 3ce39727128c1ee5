#include <support/TestCase.h>

#include <Util/LinksUtils.h>

#include <QtTest/QtTest>

#include <atomic>
#include <future>
#include <thread>
#include <type_traits>

using Zelkor::Util::GetDefaultSslUsage;
using Zelkor::Util::ReplaceUrlProtocol;
using Zelkor::Util::SetDefaultSslUsage;

static_assert(std::is_same_v<decltype(&SetDefaultSslUsage), void (*)(bool)>);
static_assert(std::is_same_v<decltype(&GetDefaultSslUsage), bool (*)()>);
static_assert(std::is_same_v<decltype(&ReplaceUrlProtocol), QString (*)(QString)>);

namespace
{

// These variables are initialised before main() runs. At that time, no test has changed the default SSL usage yet.
bool const usageWhenLoaded = GetDefaultSslUsage();
QString const linkWhenLoaded = ReplaceUrlProtocol(QStringLiteral("http://example.org"));

} // namespace

class LinksUtilsTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

protected:
    void TearDown() override { SetDefaultSslUsage(true); }

private Q_SLOTS:
    void usesTlsByDefault()
    {
        QVERIFY(usageWhenLoaded);
        QCOMPARE(linkWhenLoaded, QStringLiteral("https://example.org"));
    }

    void storesTheUsage()
    {
        SetDefaultSslUsage(false);
        QVERIFY(!GetDefaultSslUsage());
        SetDefaultSslUsage(false);
        QVERIFY(!GetDefaultSslUsage());
        SetDefaultSslUsage(true);
        QVERIFY(GetDefaultSslUsage());
    }

    void replacesTheScheme_data()
    {
        QTest::addColumn<bool>("useTls");
        QTest::addColumn<QString>("link");
        QTest::addColumn<QString>("expected");
        auto const row = [](char const* name, bool useTls, char const* link, char const* expected) {
            QTest::newRow(name) << useTls << QString::fromUtf8(link) << QString::fromUtf8(expected);
        };
        row("TLS: plain link", true, "http://a.org/b", "https://a.org/b");
        row("TLS: capitals", true, "HTTP://A.org", "https://A.org");
        row("TLS: mixed case and a second link", true, "Http://a.org/?to=http://b.org",
            "https://a.org/?to=https://b.org");
        row("TLS: unchanged TLS link", true, "https://a.org", "https://a.org");
        row("TLS: unchanged capitals", true, "HTTPS://a.org", "HTTPS://a.org");
        row("TLS: both schemes", true, "https://a.org http://b.org", "https://a.org https://b.org");
        row("TLS: link inside a text", true, "See (http://a.org).", "See (https://a.org).");
        row("TLS: inside a word", true, "xhttp://a", "xhttps://a");
        row("TLS: scheme inside a scheme", true, "http://http://", "https://https://");
        row("TLS: one slash", true, "http:/a.org", "http:/a.org");
        row("TLS: no scheme", true, "a.org/http", "a.org/http");
        row("TLS: other scheme", true, "ftp://a.org", "ftp://a.org");
        row("TLS: empty", true, "", "");
        row("TLS: non-ASCII link", true, "http://\xC3\xA4.org/\xE2\x82\xAC", "https://\xC3\xA4.org/\xE2\x82\xAC");
        row("plain: TLS link", false, "https://a.org/b", "http://a.org/b");
        row("plain: capitals", false, "HTTPS://A.org", "http://A.org");
        row("plain: two links", false, "hTTps://a.org/?to=https://b.org", "http://a.org/?to=http://b.org");
        row("plain: unchanged plain link", false, "http://a.org", "http://a.org");
        row("plain: unchanged capitals", false, "HTTP://a.org", "HTTP://a.org");
        row("plain: both schemes", false, "http://a.org https://b.org", "http://a.org http://b.org");
        row("plain: doubled s", false, "httpss://a.org", "httpss://a.org");
        row("plain: long s, which folds to s", false, "http\xC5\xBF://a.org", "http://a.org");
        row("plain: one slash", false, "https:/a.org", "https:/a.org");
        row("plain: empty", false, "", "");
    }

    void replacesTheScheme()
    {
        QFETCH(bool, useTls);
        QFETCH(QString, link);
        QFETCH(QString, expected);
        SetDefaultSslUsage(useTls);
        QCOMPARE(ReplaceUrlProtocol(link), expected);
    }

    void doesNotModifyTheGivenLink()
    {
        QString const link = QStringLiteral("http://a.org");
        QString const result = ReplaceUrlProtocol(link);
        QCOMPARE(link, QStringLiteral("http://a.org"));
        QCOMPARE(result, QStringLiteral("https://a.org"));
    }

    void doesNotChangeTheUsage()
    {
        SetDefaultSslUsage(false);
        ReplaceUrlProtocol(QStringLiteral("https://a.org"));
        QVERIFY(!GetDefaultSslUsage());
    }

    void sharesTheUsageBetweenThreads()
    {
        std::thread([] { SetDefaultSslUsage(false); }).join();
        QVERIFY(!GetDefaultSslUsage());
    }

    void appliesOneUsagePerLinkDuringConcurrentChanges()
    {
        std::atomic<bool> stop(false);
        std::promise<void> start;
        std::thread setter([&stop, &start] {
            start.set_value();
            for (bool use = false; !stop; use = !use) {
                SetDefaultSslUsage(use);
                GetDefaultSslUsage();
            }
        });
        start.get_future().wait();
        QString const link = QStringLiteral("http://a.org https://b.org");
        QString mixedResult;
        for (int i = 0; i < 100000; ++i) {
            QString const result = ReplaceUrlProtocol(link);
            bool const isConsistent = result == QStringLiteral("https://a.org https://b.org") ||
                                      result == QStringLiteral("http://a.org http://b.org");
            mixedResult = isConsistent ? mixedResult : result;
        }
        stop = true;
        setter.join();
        QCOMPARE(mixedResult, QString());
    }
};

ZQTUTIL_TEST_MAIN(LinksUtilsTest)
#include "LinksUtilsTest.moc"
