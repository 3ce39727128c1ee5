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

/// Records the hover events that it receives.
class Tile : public QWidget
{
public:
    std::vector<QEvent::Type> received;
    QEvent const* lastEvent = nullptr; // for comparisons only: the pointer is invalid after the delivery
    std::function<void()> onHover = [] {};

protected:
    bool event(QEvent* event) override
    {
        switch (event->type()) {
        case QEvent::Enter:
        case QEvent::Leave:
        case QEvent::HoverEnter:
        case QEvent::HoverLeave: {
            received.push_back(event->type());
            lastEvent = event;
            onHover();
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

constexpr int MemberCount = 4;

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

    void enablesHoverEventsForItsMembers()
    {
        Tile tile;
        QVERIFY(!tile.testAttribute(Qt::WA_Hover));
        group_->addItem(&tile);
        QVERIFY(tile.testAttribute(Qt::WA_Hover));
        group_->removeItem(&tile);
        QVERIFY(tile.testAttribute(Qt::WA_Hover));
    }

    void deliversAnEventOnceToEveryMember_data()
    {
        QTest::addColumn<int>("hovered");
        QTest::addColumn<int>("type");
        for (int hovered = 0; hovered < MemberCount; ++hovered) {
            for (auto const type : {QEvent::Enter, QEvent::Leave, QEvent::HoverEnter, QEvent::HoverLeave}) {
                QTest::addRow("member %d, event %d", hovered, int(type)) << hovered << int(type);
            }
        }
    }

    void deliversAnEventOnceToEveryMember()
    {
        QFETCH(int, hovered);
        QFETCH(int, type);
        auto const event = QEvent::Type(type);
        Send(tiles_[std::size_t(hovered)].get(), event);
        for (auto const& tile : tiles_) {
            QCOMPARE(tile->received, Types{event});
        }
    }

    void deliversTheSameEventObjectToEveryMember()
    {
        QHoverEvent event(QEvent::HoverEnter, QPointF(1, 1), QPointF(0, 0));
        QCoreApplication::sendEvent(tiles_[1].get(), &event);
        for (auto const& tile : tiles_) {
            QCOMPARE(tile->lastEvent, &event);
        }
    }

    void replaysASequenceOfEnterAndLeave()
    {
        Send(tiles_[1].get(), QEvent::Enter);
        Send(tiles_[1].get(), QEvent::Leave);
        Send(tiles_[0].get(), QEvent::Enter);
        for (auto const& tile : tiles_) {
            QCOMPARE(tile->received, (Types{QEvent::Enter, QEvent::Leave, QEvent::Enter}));
        }
    }

    void setsUnderMouseForEveryMember()
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

    void followsThePointer_data() { Zelkor::Testing::AddScreenRows(); }

    void followsThePointer()
    {
        QFETCH(QRect, screen);
        QPoint const outside = screen.topLeft() + QPoint(5, 5);
        QCursor::setPos(outside);
        window_ = std::make_unique<QWidget>();
        window_->setGeometry(QRect(screen.center(), QSize(75 * MemberCount, 100)));
        for (int i = 0; i < MemberCount; ++i) {
            tiles_[std::size_t(i)]->setParent(window_.get());
            tiles_[std::size_t(i)]->setGeometry(75 * i, 0, 75, 100);
        }
        window_->show();
        QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
        std::vector<QPoint> targets;
        for (auto const& tile : tiles_) {
            targets.push_back(tile->mapToGlobal(QPoint(35, 50)));
        }
        for (QPoint const target : {targets[0], targets[1], targets[2], outside, targets[2], outside}) {
            QCursor::setPos(target);
            for (auto const& tile : tiles_) {
                QTRY_COMPARE(tile->underMouse(), target != outside);
            }
        }
    }

    void skipsMembersThatReceivedTheSameTypeLast()
    {
        Send(tiles_[0].get(), QEvent::Enter);
        Send(tiles_[1].get(), QEvent::Enter);
        QCOMPARE(tiles_[0]->received, Types{QEvent::Enter});
        // tiles_[1] received the first event from the group and the second event directly from the test. The group does
        // not block events that are sent directly.
        QCOMPARE(tiles_[1]->received, (Types{QEvent::Enter, QEvent::Enter}));
        QCOMPARE(tiles_[2]->received, Types{QEvent::Enter});
    }

    void addingAMemberAgainForgetsItsLastEvent()
    {
        Send(tiles_[0].get(), QEvent::Enter);
        group_->addItem(tiles_[2].get());
        Send(tiles_[0].get(), QEvent::Enter);
        QCOMPARE(tiles_[1]->received, Types{QEvent::Enter});
        QCOMPARE(tiles_[2]->received, (Types{QEvent::Enter, QEvent::Enter}));
    }

    void doesNotReplayOtherEvents()
    {
        QHoverEvent move(QEvent::HoverMove, QPointF(1, 1), QPointF(0, 0));
        QCoreApplication::sendEvent(tiles_[0].get(), &move);
        QCOMPARE(tiles_[1]->received, Types());
    }

    void ignoresRemovedMembers()
    {
        group_->removeItem(tiles_[0].get());
        Send(tiles_[0].get(), QEvent::Enter);
        QCOMPARE(tiles_[0]->received, Types{QEvent::Enter});
        QCOMPARE(tiles_[1]->received, Types());

        Send(tiles_[1].get(), QEvent::Enter);
        QCOMPARE(tiles_[0]->received, Types{QEvent::Enter});
        QCOMPARE(tiles_[2]->received, Types{QEvent::Enter});
    }

    void ignoresNull()
    {
        group_->addItem(nullptr);
        group_->removeItem(nullptr);
        Send(tiles_[0].get(), QEvent::Enter);
        QCOMPARE(tiles_[2]->received, Types{QEvent::Enter});
    }

    void skipsDestroyedMembers()
    {
        tiles_[1].reset();
        Send(tiles_[0].get(), QEvent::Enter);
        QCOMPARE(tiles_[2]->received, Types{QEvent::Enter});
    }

    void membersCanBeDestroyedDuringAReplay_data()
    {
        QTest::addColumn<int>("hovered");
        QTest::addColumn<int>("destroyer");
        QTest::addColumn<int>("destroyed");
        for (int hovered = 0; hovered < MemberCount; ++hovered) {
            for (int destroyer = 0; destroyer < MemberCount; ++destroyer) {
                for (int destroyed = 0; destroyed < MemberCount; ++destroyed) {
                    // Qt does not allow a widget to be destroyed while its own event() function runs.
                    if (destroyer != destroyed) {
                        QTest::addRow("event for member %d, member %d destroys member %d", hovered, destroyer,
                                      destroyed)
                            << hovered << destroyer << destroyed;
                    }
                }
            }
        }
    }

    void membersCanBeDestroyedDuringAReplay()
    {
        QFETCH(int, hovered);
        QFETCH(int, destroyer);
        QFETCH(int, destroyed);
        tiles_[std::size_t(destroyer)]->onHover = [this, destroyed] { tiles_[std::size_t(destroyed)].reset(); };
        Send(tiles_[std::size_t(hovered)].get(), QEvent::Enter);
        for (auto const& tile : tiles_) {
            if (tile) {
                QCOMPARE(tile->received, Types{QEvent::Enter});
            }
        }
    }

    void aRemovedMemberTakesNoPartInAReplay_data()
    {
        QTest::addColumn<int>("hovered");
        QTest::addColumn<int>("removed");
        for (int hovered = 0; hovered < MemberCount; ++hovered) {
            for (int removed = 0; removed < MemberCount; ++removed) {
                QTest::addRow("event for member %d, member %d removed", hovered, removed) << hovered << removed;
            }
        }
    }

    void aRemovedMemberTakesNoPartInAReplay()
    {
        QFETCH(int, hovered);
        QFETCH(int, removed);
        group_->removeItem(tiles_[std::size_t(removed)].get());
        Send(tiles_[std::size_t(hovered)].get(), QEvent::Enter);
        for (int i = 0; i < MemberCount; ++i) {
            bool const expected = i == hovered || (i != removed && hovered != removed);
            QCOMPARE(tiles_[std::size_t(i)]->received, expected ? Types{QEvent::Enter} : Types());
        }
    }

    void theGroupCanBeDestroyedDuringAReplay()
    {
        for (auto const& tile : tiles_) {
            tile->onHover = [this] { group_.reset(); };
        }
        Send(tiles_[0].get(), QEvent::Enter);
        QVERIFY(!group_);
        QCOMPARE(tiles_[0]->received, Types{QEvent::Enter});
    }

    void skipsAMemberThatIsRemovedDuringTheReplay()
    {
        // The group replays the event to the other two members in an unspecified order. The member that receives the
        // event first removes the other member from the group.
        tiles_[0]->onHover = [this] { group_->removeItem(tiles_[2].get()); };
        tiles_[2]->onHover = [this] { group_->removeItem(tiles_[0].get()); };
        Send(tiles_[1].get(), QEvent::Enter);
        QCOMPARE(tiles_[0]->received.size() + tiles_[2]->received.size(), std::size_t(1));
        QCOMPARE(tiles_[1]->received, Types{QEvent::Enter});
    }

    void membersCanBeAddedDuringAReplay()
    {
        Tile late;
        tiles_[0]->onHover = tiles_[2]->onHover = [this, &late] { group_->addItem(&late); };
        Send(tiles_[1].get(), QEvent::Enter);
        Send(tiles_[1].get(), QEvent::Leave);
        for (auto const& tile : tiles_) {
            QCOMPARE(tile->received, (Types{QEvent::Enter, QEvent::Leave}));
        }
        QVERIFY(!late.received.empty());
        QCOMPARE(late.received.back(), QEvent::Leave);
    }

    void replaysAgainAfterAMemberThrew()
    {
        struct TestException
        {};
        tiles_[0]->onHover = tiles_[2]->onHover = [] { throw TestException(); };
        std::optional<QEvent> event(QEvent::Enter);
        QVERIFY_EXCEPTION_THROWN(QCoreApplication::sendEvent(tiles_[1].get(), &*event), TestException);
        for (auto const& tile : tiles_) {
            tile->onHover = [] {};
            tile->received.clear();
        }
        for (auto const type : {QEvent::Leave, QEvent::Enter}) {
            // The new event has the same address as the previous event. This often happens for events on the stack.
            event.emplace(type);
            QCoreApplication::sendEvent(tiles_[1].get(), &*event);
        }
        for (auto const& tile : tiles_) {
            QCOMPARE(tile->received, (Types{QEvent::Leave, QEvent::Enter}));
        }
    }

    void deliversAnEventOnceToAMemberOfTwoGroups()
    {
        Tile shared;
        Tile other;
        HoverGroup second(nullptr);
        group_->addItem(&shared);
        second.addItem(&shared);
        second.addItem(&other);
        Send(tiles_[0].get(), QEvent::Enter);
        QCOMPARE(shared.received, Types{QEvent::Enter});
        QCOMPARE(other.received, Types{QEvent::Enter});
    }

protected:
    void SetUp() override
    {
        group_ = std::make_unique<HoverGroup>(nullptr);
        for (int i = 0; i < MemberCount; ++i) {
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
    std::unique_ptr<QWidget> window_; // optional parent of the tiles
    std::vector<std::unique_ptr<Tile>> tiles_;
};

ZQTUTIL_WIDGET_TEST_MAIN(HoverGroupTest)

#include "HoverGroupTest.moc"
