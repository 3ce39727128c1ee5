#include <support/TestCase.h>
#include <support/displays/Screens.h>

#include <Util/HoverGroup.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QPointer>
#include <QtGui/QCursor>
#include <QtGui/QHoverEvent>
#include <QtTest/QtTest>

#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <vector>

using Zelkor::Util::HoverGroup;

static_assert(std::is_base_of_v<QObject, HoverGroup>);
static_assert(!std::is_copy_constructible_v<HoverGroup> && !std::is_final_v<HoverGroup>);

namespace
{

/// Notes the hover events that reach it.
class Tile : public QWidget
{
public:
    std::vector<QEvent::Type> seen;
    QEvent const* lastEvent = nullptr; // for comparison only
    std::function<void()> onHover = [] {};

protected:
    bool event(QEvent* event) override
    {
        switch (event->type()) {
        case QEvent::Enter:
        case QEvent::Leave:
        case QEvent::HoverEnter:
        case QEvent::HoverLeave: {
            seen.push_back(event->type());
            lastEvent = event;
            auto const called = onHover; // which may end this tile
            called();
            return true;
        }
        default:
            return QWidget::event(event);
        }
    }
};

void Send(QWidget* widget, QEvent::Type type)
{
    if (type == QEvent::Enter || type == QEvent::Leave) {
        QEvent event(type);
        QCoreApplication::sendEvent(widget, &event);
    } else {
        QHoverEvent event(type, QPointF(1, 1), QPointF(0, 0));
        QCoreApplication::sendEvent(widget, &event);
    }
}

using Types = std::vector<QEvent::Type>;

} // namespace

class HoverGroupTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void isOwnedByItsParent()
    {
        QWidget parent;
        HoverGroup const group(&parent);
        QCOMPARE(group.parent(), &parent);
    }

    void letsItsMembersHaveHoverEvents()
    {
        Tile tile;
        QVERIFY(!tile.testAttribute(Qt::WA_Hover));
        group_->addItem(&tile);
        QVERIFY(tile.testAttribute(Qt::WA_Hover));
        group_->removeItem(&tile);
        QVERIFY(tile.testAttribute(Qt::WA_Hover));
    }

    void everyMemberGetsAnEventOnce_data()
    {
        QTest::addColumn<int>("hovered");
        QTest::addColumn<int>("type");
        for (int hovered = 0; hovered < 3; ++hovered) {
            for (auto const type : {QEvent::Enter, QEvent::Leave, QEvent::HoverEnter, QEvent::HoverLeave}) {
                QTest::addRow("member %d, event %d", hovered, int(type)) << hovered << int(type);
            }
        }
    }

    void everyMemberGetsAnEventOnce()
    {
        QFETCH(int, hovered);
        QFETCH(int, type);
        auto const event = QEvent::Type(type);
        Send(tiles_[std::size_t(hovered)].get(), event);
        for (auto const& tile : tiles_) {
            QCOMPARE(tile->seen, Types{event});
        }
    }

    void everyMemberGetsTheVeryEvent()
    {
        QHoverEvent event(QEvent::HoverEnter, QPointF(1, 1), QPointF(0, 0));
        QCoreApplication::sendEvent(tiles_[1].get(), &event);
        for (auto const& tile : tiles_) {
            QCOMPARE(tile->lastEvent, &event);
        }
    }

    void entersAndLeavesTogether()
    {
        Send(tiles_[1].get(), QEvent::Enter);
        Send(tiles_[1].get(), QEvent::Leave);
        Send(tiles_[0].get(), QEvent::Enter);
        for (auto const& tile : tiles_) {
            QCOMPARE(tile->seen, (Types{QEvent::Enter, QEvent::Leave, QEvent::Enter}));
        }
    }

    void lightsTheLookOfHoveringUp()
    {
        Send(tiles_[1].get(), QEvent::Enter);
        for (auto const& tile : tiles_) {
            QVERIFY(tile->underMouse());
        }
        Send(tiles_[2].get(), QEvent::Leave);
        for (auto const& tile : tiles_) {
            QVERIFY(!tile->underMouse());
        }
    }

    void followsThePointer_data() { Zelkor::Testing::AddScreens(); }

    void followsThePointer()
    {
        QFETCH(QRect, screen);
        QPoint const outside = screen.topLeft() + QPoint(5, 5);
        QCursor::setPos(outside);
        window_ = std::make_unique<QWidget>();
        window_->setGeometry(QRect(screen.center(), QSize(300, 100)));
        for (int i = 0; i < 3; ++i) {
            tiles_[std::size_t(i)]->setParent(window_.get());
            tiles_[std::size_t(i)]->setGeometry(100 * i, 0, 100, 100);
        }
        window_->show();
        QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
        std::vector<QPoint> targets;
        for (auto const& tile : tiles_) {
            targets.push_back(tile->mapToGlobal(QPoint(50, 50)));
        }
        for (QPoint const target : {targets[0], targets[1], targets[2], outside, targets[2], outside}) {
            QCursor::setPos(target);
            for (auto const& tile : tiles_) {
                QTRY_COMPARE(tile->underMouse(), target != outside);
            }
        }
    }

    void aMemberThatHadTheEventLastIsLeftOut()
    {
        Send(tiles_[0].get(), QEvent::Enter);
        Send(tiles_[1].get(), QEvent::Enter);
        QCOMPARE(tiles_[0]->seen, Types{QEvent::Enter});
        QCOMPARE(tiles_[1]->seen, (Types{QEvent::Enter, QEvent::Enter})); // its own always reaches it
        QCOMPARE(tiles_[2]->seen, Types{QEvent::Enter});
    }

    void aMemberThatIsAddedAgainStartsAfresh()
    {
        Send(tiles_[0].get(), QEvent::Enter);
        group_->addItem(tiles_[2].get());
        Send(tiles_[0].get(), QEvent::Enter);
        QCOMPARE(tiles_[1]->seen, Types{QEvent::Enter});
        QCOMPARE(tiles_[2]->seen, (Types{QEvent::Enter, QEvent::Enter}));
    }

    void replaysNoOtherEvents()
    {
        QHoverEvent move(QEvent::HoverMove, QPointF(1, 1), QPointF(0, 0));
        QCoreApplication::sendEvent(tiles_[0].get(), &move);
        QCOMPARE(tiles_[1]->seen, Types());
    }

    void aRemovedMemberNeitherSendsNorReceives()
    {
        group_->removeItem(tiles_[0].get());
        Send(tiles_[0].get(), QEvent::Enter);
        QCOMPARE(tiles_[0]->seen, Types{QEvent::Enter});
        QCOMPARE(tiles_[1]->seen, Types());

        Send(tiles_[1].get(), QEvent::Enter);
        QCOMPARE(tiles_[0]->seen, Types{QEvent::Enter});
        QCOMPARE(tiles_[2]->seen, Types{QEvent::Enter});
    }

    void ignoresNull()
    {
        group_->addItem(nullptr);
        group_->removeItem(nullptr);
        Send(tiles_[0].get(), QEvent::Enter);
        QCOMPARE(tiles_[2]->seen, Types{QEvent::Enter});
    }

    void membersMayEndAtAnyTime()
    {
        tiles_[1].reset();
        Send(tiles_[0].get(), QEvent::Enter);
        QCOMPARE(tiles_[2]->seen, Types{QEvent::Enter});
    }

    void membersMayEndDuringAReplay_data()
    {
        QTest::addColumn<int>("hovered");
        QTest::addColumn<int>("ends");
        QTest::addColumn<int>("when");
        for (int hovered = 0; hovered < 4; ++hovered) {
            for (int ends = 0; ends < 4; ++ends) {
                for (int when = 0; when < 4; ++when) {
                    QTest::addRow("%d is hovered, %d ends when %d is told", hovered, ends, when)
                        << hovered << ends << when;
                }
            }
        }
    }

    void membersMayEndDuringAReplay()
    {
        QFETCH(int, hovered);
        QFETCH(int, ends);
        QFETCH(int, when);
        tiles_.push_back(std::make_unique<Tile>());
        group_->addItem(tiles_.back().get());
        tiles_[std::size_t(when)]->onHover = [this, ends] {
            if (auto& tile = tiles_[std::size_t(ends)]) {
                tile.release()->deleteLater();
                QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            }
        };
        if (ends == when) {
            tiles_[std::size_t(when)]->onHover = [] {}; // a widget that ends in its own event is Qt's affair
            group_->removeItem(tiles_[std::size_t(ends)].get());
        }
        Send(tiles_[std::size_t(hovered)].get(), QEvent::Enter);
        if (ends == when && hovered == ends) {
            return;
        }
        for (auto const& tile : tiles_) {
            if (tile && !(ends == when && tile == tiles_[std::size_t(ends)])) {
                QCOMPARE(tile->seen, Types{QEvent::Enter});
            }
        }
    }

    void theGroupMayEndDuringAReplay()
    {
        for (auto const& tile : tiles_) {
            tile->onHover = [this] { group_.reset(); };
        }
        Send(tiles_[0].get(), QEvent::Enter);
        QVERIFY(!group_);
        QCOMPARE(tiles_[0]->seen, Types{QEvent::Enter});
    }

    void aMemberThatIsRemovedBeforeItsTurnGetsNothing()
    {
        // Whichever comes first removes the other.
        tiles_[0]->onHover = [this] { group_->removeItem(tiles_[2].get()); };
        tiles_[2]->onHover = [this] { group_->removeItem(tiles_[0].get()); };
        Send(tiles_[1].get(), QEvent::Enter);
        QCOMPARE(tiles_[0]->seen.size() + tiles_[2]->seen.size(), std::size_t(1));
        QCOMPARE(tiles_[1]->seen, Types{QEvent::Enter});
    }

    void membersMayJoinDuringAReplay()
    {
        Tile late;
        tiles_[0]->onHover = tiles_[2]->onHover = [this, &late] { group_->addItem(&late); };
        Send(tiles_[1].get(), QEvent::Enter);
        Send(tiles_[1].get(), QEvent::Leave);
        for (auto const& tile : tiles_) {
            QCOMPARE(tile->seen, (Types{QEvent::Enter, QEvent::Leave}));
        }
        QVERIFY(!late.seen.empty());
        QCOMPARE(late.seen.back(), QEvent::Leave);
    }

    void replaysAgainAfterAMemberHasThrown()
    {
        struct Escape
        {};
        tiles_[0]->onHover = tiles_[2]->onHover = [] { throw Escape(); };
        std::optional<QEvent> event(QEvent::Enter);
        QVERIFY_EXCEPTION_THROWN(QCoreApplication::sendEvent(tiles_[1].get(), &*event), Escape);
        for (auto const& tile : tiles_) {
            tile->onHover = [] {};
            tile->seen.clear();
        }
        for (auto const type : {QEvent::Leave, QEvent::Enter}) {
            event.emplace(type); // in the same place, as the events of the system are
            QCoreApplication::sendEvent(tiles_[1].get(), &*event);
        }
        for (auto const& tile : tiles_) {
            QCOMPARE(tile->seen, (Types{QEvent::Leave, QEvent::Enter}));
        }
    }

    void aMemberOfTwoGroupsGetsAnEventOnce()
    {
        Tile shared;
        Tile other;
        HoverGroup second(nullptr);
        group_->addItem(&shared);
        second.addItem(&shared);
        second.addItem(&other);
        Send(tiles_[0].get(), QEvent::Enter);
        QCOMPARE(shared.seen, Types{QEvent::Enter});
        QCOMPARE(other.seen, Types{QEvent::Enter});
    }

protected:
    void SetUp() override
    {
        group_ = std::make_unique<HoverGroup>(nullptr);
        for (int i = 0; i < 3; ++i) {
            tiles_.push_back(std::make_unique<Tile>());
            group_->addItem(tiles_.back().get());
        }
    }

    void TearDown() override
    {
        tiles_.clear();
        window_.reset();
        group_.reset();
    }

private:
    std::unique_ptr<HoverGroup> group_;
    std::unique_ptr<QWidget> window_; // that tiles may stand in
    std::vector<std::unique_ptr<Tile>> tiles_;
};

ZQTUTIL_WIDGET_TEST_MAIN(HoverGroupTest)

#include "HoverGroupTest.moc"
