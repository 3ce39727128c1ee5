#include <support/TestCase.h>

#include <Util/AlertBox.h>

#include <QtGui/QDesktopServices>
#include <QtTest/QtTest>
#include <QtWidgets/QLabel>

#include <memory>
#include <thread>

using Zelkor::App::ILinksOpener;
using Zelkor::Util::AlertBox;

static_assert(std::has_virtual_destructor_v<ILinksOpener> && std::is_abstract_v<ILinksOpener>);

/// Handles URLs of the scheme "test" that are passed to QDesktopServices, and records them.
class UrlHandler : public QObject
{
    Q_OBJECT

public:
    UrlHandler() { QDesktopServices::setUrlHandler(QStringLiteral("test"), this, "Open"); }
    ~UrlHandler() override { QDesktopServices::unsetUrlHandler(QStringLiteral("test")); }

    QStringList links;

    Q_INVOKABLE void Open(QUrl const& link) { links += link.toString(); }
};

namespace
{

/// A label that counts the connections to its signal linkActivated().
class CountingLabel : public QLabel
{
    Q_OBJECT

public:
    using QLabel::QLabel;

    int Connections() const { return receivers(SIGNAL(linkActivated(QString))); }
};

/// Records the links passed to OpenLink() and the thread of the last call.
class Opener : public ILinksOpener
{
public:
    QStringList links;
    std::thread::id thread;

    void OpenLink(QString const& link) override
    {
        links += link;
        thread = std::this_thread::get_id();
    }
};

QString Link(QString const& address)
{
    return QStringLiteral("<a href=\"%1\">a link to click on</a>").arg(address);
}

std::unique_ptr<AlertBox> CreateBox()
{
    auto box = std::make_unique<AlertBox>(AlertBox::Information, QStringLiteral("title"),
                                          Link(QStringLiteral("test:text")), QMessageBox::Ok);
    box->SetLearnMoreLink(Link(QStringLiteral("test:more")));
    return box;
}

QLabel* TextLabel(AlertBox const& box)
{
    return box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
}

QLabel* LearnMoreLabel(AlertBox const& box)
{
    return box.findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"));
}

/// Clicks at the beginning of the text of \a label. The label must be visible.
void ClickLink(QLabel* label)
{
    QVERIFY(label && label->isVisible());
    QRect const area = label->contentsRect();
    int const lineHeight = label->fontMetrics().height();
    bool const centered = label->alignment().testFlag(Qt::AlignVCenter);
    QTest::mouseClick(label, Qt::LeftButton, Qt::NoModifier,
                      QPoint(area.left() + lineHeight, centered ? area.center().y() : area.top() + lineHeight / 2));
}

} // namespace

class AlertBoxLinksTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void passesClickedLinksToTheOpener()
    {
        UrlHandler const desktop;
        auto const opener = std::make_shared<Opener>();
        auto const box = CreateBox();
        box->SetLinksOpener(opener);
        box->Show(false);
        ClickLink(TextLabel(*box));
        ClickLink(LearnMoreLabel(*box));
        QCOMPARE(opener->links, (QStringList{QStringLiteral("test:text"), QStringLiteral("test:more")}));
        QVERIFY(desktop.links.isEmpty());
        QVERIFY(box->isVisible());
    }

    void passesClickedLinksToTheDesktopWithoutOpener()
    {
        UrlHandler const desktop;
        auto const opener = std::make_shared<Opener>();
        auto const box = CreateBox();
        box->SetLinksOpener(opener);
        box->SetLinksOpener(nullptr);
        box->Show(false);
        ClickLink(TextLabel(*box));
        ClickLink(LearnMoreLabel(*box));
        QCOMPARE(desktop.links, (QStringList{QStringLiteral("test:text"), QStringLiteral("test:more")}));
        QVERIFY(opener->links.isEmpty());
    }

    void passesLinksActivatedByKeyboardToTheOpener()
    {
        auto const opener = std::make_shared<Opener>();
        auto const box = CreateBox();
        box->SetLinksOpener(opener);
        QLabel* const label = TextLabel(*box);
        label->setTextInteractionFlags(Qt::LinksAccessibleByKeyboard);
        box->Show(false);
        QTest::keyClick(label, Qt::Key_Tab);
        QTest::keyClick(label, Qt::Key_Return);
        QCOMPARE(opener->links, (QStringList{QStringLiteral("test:text")}));
    }

    void passesLinksUnchanged_data()
    {
        QTest::addColumn<QString>("link");
        QTest::newRow("empty") << QString();
        QTest::newRow("encoded URL") << QStringLiteral("https://example.org/a%20b?c=d&e#f");
        QTest::newRow("plain text") << QStringLiteral("learn more");
        QTest::newRow("Cyrillic") << QStringLiteral("mailto:Грета@example.org");
    }

    void passesLinksUnchanged()
    {
        QFETCH(QString, link);
        auto const opener = std::make_shared<Opener>();
        auto const box = CreateBox();
        box->SetLinksOpener(opener);
        Q_EMIT TextLabel(*box)->linkActivated(link);
        QCOMPARE(opener->links, (QStringList{link}));
    }

    void disablesExternalLinksOfAllLabels()
    {
        auto const box = CreateBox();
        auto* const outer = new QWidget(box.get());
        auto* const inner = new QLabel(outer);
        inner->setOpenExternalLinks(true);
        box->SetLinksOpener(std::make_shared<Opener>());
        auto const labels = box->findChildren<QLabel*>();
        QVERIFY(labels.size() >= 4); // the box has labels for icon, text and informative text; `inner` is the fourth
        for (QLabel const* const label : labels) {
            QVERIFY2(!label->openExternalLinks(), qPrintable(label->objectName()));
        }
    }

    void enablesExternalLinksOfAllLabelsWithoutOpener()
    {
        auto const box = CreateBox();
        auto* const outer = new QWidget(box.get());
        new QLabel(outer);
        box->SetLinksOpener(nullptr);
        auto const labels = box->findChildren<QLabel*>();
        QVERIFY(labels.size() >= 4);
        for (QLabel const* const label : labels) {
            QVERIFY2(label->openExternalLinks(), qPrintable(label->objectName()));
        }
    }

    void connectsEveryLabelOnce()
    {
        AlertBox box;
        auto* const outer = new QWidget(&box);
        auto const* const label = new CountingLabel(outer);
        QCOMPARE(label->Connections(), 0);
        box.SetLinksOpener(std::make_shared<Opener>());
        QCOMPARE(label->Connections(), 1);
        box.SetLinksOpener(std::make_shared<Opener>());
        QCOMPARE(label->Connections(), 1);
        box.SetLinksOpener(nullptr);
        QCOMPARE(label->Connections(), 0);
    }

    void removesForeignConnections_data()
    {
        QTest::addColumn<bool>("hasOpener");
        QTest::newRow("opener") << true;
        QTest::newRow("no opener") << false;
    }

    void removesForeignConnections()
    {
        QFETCH(bool, hasOpener);
        AlertBox box;
        CountingLabel label(&box);
        QStringList links;
        connect(&label, &QLabel::linkActivated, this, [&links](QString const& link) { links += link; });
        connect(&label, &QLabel::linkActivated, [&links](QString const& link) { links += link; });
        box.SetLinksOpener(hasOpener ? std::make_shared<Opener>() : nullptr);
        QCOMPARE(label.Connections(), hasOpener ? 1 : 0);
        Q_EMIT label.linkActivated(QStringLiteral("link"));
        QVERIFY(links.isEmpty());
    }

    void keepsConnectionsOfOtherSignals()
    {
        AlertBox box;
        QLabel label(&box);
        int hovers = 0;
        connect(&label, &QLabel::linkHovered, this, [&hovers] { ++hovers; });
        box.SetLinksOpener(std::make_shared<Opener>());
        Q_EMIT label.linkHovered(QStringLiteral("link"));
        QCOMPARE(hovers, 1);
    }

    void aNewOpenerReplacesTheOldOne()
    {
        auto const first = std::make_shared<Opener>();
        auto const second = std::make_shared<Opener>();
        auto const box = CreateBox();
        box->SetLinksOpener(first);
        box->SetLinksOpener(second);
        Q_EMIT TextLabel(*box)->linkActivated(QStringLiteral("link"));
        QVERIFY(first->links.isEmpty());
        QCOMPARE(second->links, (QStringList{QStringLiteral("link")}));
        QCOMPARE(first.use_count(), 1);
    }

    void doesNotConnectLabelsAddedLater()
    {
        auto const opener = std::make_shared<Opener>();
        AlertBox box;
        box.SetLinksOpener(opener);
        CountingLabel label(&box);
        label.setOpenExternalLinks(true);
        Q_EMIT label.linkActivated(QStringLiteral("early"));
        QVERIFY(label.openExternalLinks());
        QVERIFY(opener->links.isEmpty());
        box.SetLinksOpener(opener);
        Q_EMIT label.linkActivated(QStringLiteral("late"));
        QVERIFY(!label.openExternalLinks());
        QCOMPARE(opener->links, (QStringList{QStringLiteral("late")}));
    }

    void sharesOwnershipOfTheOpener()
    {
        auto opener = std::make_shared<Opener>();
        std::weak_ptr<Opener> const watched = opener;
        auto box = CreateBox();
        box->SetLinksOpener(opener);
        opener.reset();
        QVERIFY(!watched.expired());
        Q_EMIT TextLabel(*box)->linkActivated(QStringLiteral("link"));
        QCOMPARE(watched.lock()->links.size(), 1);
        box.reset();
        QVERIFY(watched.expired());
    }

    void releasesTheOpenerWhenItIsCleared()
    {
        auto opener = std::make_shared<Opener>();
        std::weak_ptr<Opener> const watched = opener;
        auto const box = CreateBox();
        box->SetLinksOpener(opener);
        opener.reset();
        box->SetLinksOpener(nullptr);
        QVERIFY(watched.expired());
    }

    void releasesTheOpenerWhenAllLabelsAreDestroyed()
    {
        auto opener = std::make_shared<Opener>();
        std::weak_ptr<Opener> const watched = opener;
        AlertBox box;
        box.SetLinksOpener(opener);
        opener.reset();
        qDeleteAll(box.findChildren<QLabel*>(QString(), Qt::FindDirectChildrenOnly));
        QVERIFY(watched.expired());
    }

    void aReparentedLabelKeepsTheOpener()
    {
        auto const opener = std::make_shared<Opener>();
        auto box = CreateBox();
        QLabel label(box.get());
        box->SetLinksOpener(opener);
        label.setParent(nullptr);
        box.reset();
        Q_EMIT label.linkActivated(QStringLiteral("link"));
        QCOMPARE(opener->links, (QStringList{QStringLiteral("link")}));
    }

    void theOpenerCanDestroyTheBox()
    {
        class Destroyer : public ILinksOpener
        {
        public:
            explicit Destroyer(AlertBox* box)
                : box_(box)
            {}

            QStringList links;

            void OpenLink(QString const& link) override
            {
                delete box_;
                links += link;
            }

        private:
            QPointer<AlertBox> box_;
        };
        QPointer<AlertBox> const box(CreateBox().release());
        auto const opener = std::make_shared<Destroyer>(box);
        box->SetLinksOpener(opener);
        Q_EMIT TextLabel(*box)->linkActivated(QStringLiteral("link"));
        QVERIFY(box.isNull());
        QCOMPARE(opener->links, (QStringList{QStringLiteral("link")}));
        QCOMPARE(opener.use_count(), 1);
    }

    void callsTheOpenerOnTheThreadOfTheSignal()
    {
        auto const opener = std::make_shared<Opener>();
        auto const box = CreateBox();
        box->SetLinksOpener(opener);
        std::thread thread([&box] { Q_EMIT TextLabel(*box)->linkActivated(QStringLiteral("link")); });
        std::thread::id const id = thread.get_id();
        thread.join();
        QCOMPARE(opener->links.size(), 1);
        QVERIFY(opener->thread == id);
    }

    void acceptsAnOpenerWithoutLabels()
    {
        AlertBox box;
        qDeleteAll(box.findChildren<QLabel*>(QString(), Qt::FindDirectChildrenOnly));
        auto const opener = std::make_shared<Opener>();
        box.SetLinksOpener(opener);
        QCOMPARE(opener.use_count(), 1);
        box.SetLinksOpener(nullptr);
    }
};

ZQTUTIL_WIDGET_TEST_MAIN(AlertBoxLinksTest)
#include "AlertBoxLinksTest.moc"
