#include <support/ProgrammingError.h>
#include <support/TestCase.h>

#include <Util/UndoHandlerStack.h>

#include <QtCore/QMetaMethod>
#include <QtTest/QtTest>
#include <QtWidgets/QUndoGroup>
#include <QtWidgets/QUndoStack>

#include <memory>
#include <stdexcept>
#include <type_traits>

using Zelkor::Testing::CatchProgrammingError;
using Zelkor::Util::UndoHandlerStack;

static_assert(std::is_base_of_v<QObject, UndoHandlerStack>);
static_assert(!std::is_copy_constructible_v<UndoHandlerStack> && !std::is_move_constructible_v<UndoHandlerStack>);
static_assert(!std::is_final_v<UndoHandlerStack>);

class UndoHandlerStackTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void hasItsNameAndSignals()
    {
        QMetaObject const& meta = UndoHandlerStack::staticMetaObject;
        QCOMPARE(meta.className(), "Zelkor::Util::UndoHandlerStack");
        QList<QByteArray> signatures;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            QCOMPARE(meta.method(i).methodType(), QMetaMethod::Signal);
            QCOMPARE(meta.method(i).access(), QMetaMethod::Public);
            signatures += meta.method(i).methodSignature();
        }
        QCOMPARE(signatures, (QList<QByteArray>{"canRedoChanged(bool)", "canUndoChanged(bool)", "cleanChanged(bool)",
                                                "indexChanged(int)"}));
        QCOMPARE(meta.method(meta.methodOffset()).parameterNames(), QList<QByteArray>{"canRedo"});
        QCOMPARE(meta.method(meta.methodOffset() + 1).parameterNames(), QList<QByteArray>{"canUndo"});
        QCOMPARE(meta.method(meta.methodOffset() + 2).parameterNames(), QList<QByteArray>{"clean"});
        QCOMPARE(meta.method(meta.methodOffset() + 3).parameterNames(), QList<QByteArray>{"idx"});
        QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    }

    void ownsOneGroup()
    {
        QObject parent;
        auto* const handlers = new UndoHandlerStack(&parent);
        QCOMPARE(handlers->parent(), &parent);
        QCOMPARE(handlers->children().size(), 1);
        QVERIFY(qobject_cast<QUndoGroup*>(handlers->children().first()));
    }

    void isEmptyAtFirst()
    {
        QVERIFY(handlers_->empty());
        QCOMPARE(handlers_->activeStack(), nullptr);
        QVERIFY(!handlers_->canUndo());
        QVERIFY(!handlers_->canRedo());
        handlers_->undo();
        handlers_->redo();
        QCOMPARE(handlers_->pop(), nullptr);
        QCOMPARE(log_, QStringList());
    }

    void theLastPushedStackIsActive()
    {
        handlers_->push(a_.get());
        QCOMPARE(handlers_->activeStack(), a_.get());
        QVERIFY(!handlers_->empty());
        handlers_->push(b_.get());
        QCOMPARE(handlers_->activeStack(), b_.get());

        QCOMPARE(handlers_->pop(), b_.get());
        QCOMPARE(handlers_->activeStack(), a_.get());
        QVERIFY(!handlers_->empty());

        QCOMPARE(handlers_->pop(), a_.get());
        QCOMPARE(handlers_->activeStack(), nullptr);
        QVERIFY(handlers_->empty());
    }

    void poppedStacksLeaveTheGroup()
    {
        auto* const group = handlers_->findChild<QUndoGroup*>();
        handlers_->push(a_.get());
        handlers_->push(b_.get());
        QCOMPARE(group->stacks(), (QList<QUndoStack*>{a_.get(), b_.get()}));
        handlers_->pop();
        QCOMPARE(group->stacks(), QList<QUndoStack*>{a_.get()});
        QVERIFY(!b_->isActive() || !group->stacks().contains(b_.get()));
    }

    void undoesAndRedoesInTheActiveStack()
    {
        handlers_->push(a_.get());
        handlers_->push(b_.get());
        a_->push(new QUndoCommand);
        b_->push(new QUndoCommand);
        QVERIFY(handlers_->canUndo());
        handlers_->undo();
        QCOMPARE(b_->index(), 0);
        QCOMPARE(a_->index(), 1);
        QVERIFY(!handlers_->canUndo());
        QVERIFY(handlers_->canRedo());
        handlers_->redo();
        QCOMPARE(b_->index(), 1);
        QVERIFY(!handlers_->canRedo());
    }

    void announcesTheStateOfAStackThatBecomesActive()
    {
        a_->push(new QUndoCommand);
        handlers_->push(a_.get());
        QVERIFY(log_.contains(QStringLiteral("canUndo true")));
        QVERIFY(log_.contains(QStringLiteral("canRedo false")));
        QVERIFY(log_.contains(QStringLiteral("clean false")));
        QVERIFY(log_.contains(QStringLiteral("index 1")));
        log_.clear();

        handlers_->push(b_.get());
        QVERIFY(log_.contains(QStringLiteral("canUndo false")));
        QVERIFY(log_.contains(QStringLiteral("clean true")));
        QVERIFY(log_.contains(QStringLiteral("index 0")));
        log_.clear();

        handlers_->pop();
        QVERIFY(log_.contains(QStringLiteral("canUndo true")));
        QVERIFY(log_.contains(QStringLiteral("index 1")));
    }

    void aPopShowsTheNewStateOnly()
    {
        a_->push(new QUndoCommand);
        handlers_->push(a_.get());
        handlers_->push(b_.get());
        log_.clear();
        handlers_->pop();
        // Never "nothing to undo", which a removal before the change would announce.
        QVERIFY(!log_.contains(QStringLiteral("canUndo false")));
    }

    void isInItsNewOrderWhenItAnnouncesAPush()
    {
        a_->push(new QUndoCommand);
        int announced = 0;
        connect(handlers_.get(), &UndoHandlerStack::indexChanged, this, [&] {
            ++announced;
            QVERIFY(!handlers_->empty());
            QCOMPARE(handlers_->activeStack(), a_.get());
        });
        handlers_->push(a_.get());
        QVERIFY(announced > 0);
    }

    void isInItsNewOrderWhenItAnnouncesAPop_data()
    {
        QTest::addColumn<bool>("isLast");
        QTest::newRow("the last stack") << true;
        QTest::newRow("one above another") << false;
    }

    void isInItsNewOrderWhenItAnnouncesAPop()
    {
        QFETCH(bool, isLast);
        auto* const group = handlers_->findChild<QUndoGroup*>();
        if (!isLast) {
            handlers_->push(a_.get());
        }
        b_->push(new QUndoCommand);
        handlers_->push(b_.get());
        int announced = 0;
        connect(handlers_.get(), &UndoHandlerStack::indexChanged, this, [&] {
            ++announced;
            QCOMPARE(handlers_->empty(), isLast);
            QCOMPARE(handlers_->activeStack(), isLast ? nullptr : a_.get());
            QVERIFY(group->stacks().contains(b_.get())); // it leaves when the other one is active
        });
        QCOMPARE(handlers_->pop(), b_.get());
        QVERIFY(announced > 0);
        QVERIFY(!group->stacks().contains(b_.get()));
    }

    void aStackThatWasPushedTwiceLeavesTheGroupOnce()
    {
        handlers_->push(a_.get());
        handlers_->push(a_.get());
        QCOMPARE(handlers_->pop(), a_.get());
        QCOMPARE(handlers_->activeStack(), nullptr); // taking it out of the group ends its turn
        QVERIFY(!handlers_->empty());
        QCOMPARE(handlers_->pop(), a_.get());
        QVERIFY(handlers_->empty());
    }

    void announcesChangesOfTheActiveStackOnly()
    {
        handlers_->push(a_.get());
        handlers_->push(b_.get());
        log_.clear();
        a_->push(new QUndoCommand);
        QCOMPARE(log_, QStringList());
        b_->push(new QUndoCommand);
        QCOMPARE(log_.count(QStringLiteral("canUndo true")), 1);
        QCOMPARE(log_.count(QStringLiteral("clean false")), 1);
        QCOMPARE(log_.count(QStringLiteral("index 1")), 1);
        log_.clear();
        handlers_->undo();
        QCOMPARE(log_.count(QStringLiteral("canRedo true")), 1);
        QCOMPARE(log_.count(QStringLiteral("canUndo false")), 1);
    }

    void isConnectedByName()
    {
        QSignalSpy const spy(handlers_.get(), SIGNAL(canUndoChanged(bool)));
        QVERIFY(spy.isValid());
        a_->push(new QUndoCommand);
        handlers_->push(a_.get());
        QCOMPARE(spy.last().first().toBool(), true);
    }

    void refusesNull()
    {
        handlers_->push(a_.get());
        auto const error = CatchProgrammingError<std::invalid_argument>([this] { handlers_->push(nullptr); });
        QCOMPARE(error.message, QStringLiteral("UndoHandlerStack use without stack!"));
        QCOMPARE(error.file, QStringLiteral("Util/UndoHandlerStack.cpp"));
        QVERIFY(error.function.contains(QStringLiteral("UndoHandlerStack::push")));
        QVERIFY(!error.callStack.isEmpty());
        QCOMPARE(handlers_->activeStack(), a_.get());
        QCOMPARE(handlers_->pop(), a_.get());
        QVERIFY(handlers_->empty());
    }

    void aStackThatEndsLeavesTheGroupButNotTheOrder()
    {
        handlers_->push(a_.get());
        a_.reset();
        QCOMPARE(handlers_->activeStack(), nullptr);
        QVERIFY(!handlers_->empty());
        QVERIFY(!handlers_->canUndo());
    }

    void leavesTheStacksToTheirOwner()
    {
        handlers_->push(a_.get());
        QCOMPARE(handlers_->pop(), a_.get());
        a_->push(new QUndoCommand);
        QCOMPARE(a_->count(), 1);

        handlers_->push(b_.get());
        handlers_.reset();
        b_->push(new QUndoCommand);
        QCOMPARE(b_->count(), 1);
    }

protected:
    void SetUp() override
    {
        handlers_ = std::make_unique<UndoHandlerStack>(nullptr);
        a_ = std::make_unique<QUndoStack>();
        b_ = std::make_unique<QUndoStack>();
        auto const note = [this](char const* what) {
            return [this, what](bool state) {
                log_ += QStringLiteral("%1 %2").arg(QLatin1String(what),
                                                    state ? QLatin1String("true") : QLatin1String("false"));
            };
        };
        connect(handlers_.get(), &UndoHandlerStack::canRedoChanged, this, note("canRedo"));
        connect(handlers_.get(), &UndoHandlerStack::canUndoChanged, this, note("canUndo"));
        connect(handlers_.get(), &UndoHandlerStack::cleanChanged, this, note("clean"));
        connect(handlers_.get(), &UndoHandlerStack::indexChanged, this,
                [this](int index) { log_ += QStringLiteral("index %1").arg(index); });
    }

    void TearDown() override
    {
        handlers_.reset();
        a_.reset();
        b_.reset();
        log_.clear();
    }

private:
    std::unique_ptr<UndoHandlerStack> handlers_;
    std::unique_ptr<QUndoStack> a_;
    std::unique_ptr<QUndoStack> b_;
    QStringList log_;
};

ZQTUTIL_WIDGET_TEST_MAIN(UndoHandlerStackTest)

#include "UndoHandlerStackTest.moc"
