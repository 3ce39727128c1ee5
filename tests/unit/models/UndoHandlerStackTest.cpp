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
    void declaresFourSignals()
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

    void isInitiallyEmpty()
    {
        QSignalSpy const canRedo(handlers_.get(), &UndoHandlerStack::canRedoChanged);
        QSignalSpy const canUndo(handlers_.get(), &UndoHandlerStack::canUndoChanged);
        QSignalSpy const clean(handlers_.get(), &UndoHandlerStack::cleanChanged);
        QSignalSpy const index(handlers_.get(), &UndoHandlerStack::indexChanged);
        QVERIFY(handlers_->empty());
        QCOMPARE(handlers_->activeStack(), nullptr);
        QVERIFY(!handlers_->canUndo());
        QVERIFY(!handlers_->canRedo());
        handlers_->undo();
        handlers_->redo();
        QCOMPARE(handlers_->pop(), nullptr);
        QCOMPARE(canRedo.count(), 0);
        QCOMPARE(canUndo.count(), 0);
        QCOMPARE(clean.count(), 0);
        QCOMPARE(index.count(), 0);
    }

    void activatesTheLastPushedStack()
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

    void removesPoppedStacksFromTheGroup()
    {
        auto* const group = handlers_->findChild<QUndoGroup*>();
        handlers_->push(a_.get());
        handlers_->push(b_.get());
        QCOMPARE(group->stacks(), (QList<QUndoStack*>{a_.get(), b_.get()}));
        handlers_->pop();
        QCOMPARE(group->stacks(), QList<QUndoStack*>{a_.get()});
    }

    void forwardsUndoAndRedoToTheActiveStack()
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

    void emitsTheStateOfAStackThatBecomesActive()
    {
        QSignalSpy canRedo(handlers_.get(), &UndoHandlerStack::canRedoChanged);
        QSignalSpy canUndo(handlers_.get(), &UndoHandlerStack::canUndoChanged);
        QSignalSpy clean(handlers_.get(), &UndoHandlerStack::cleanChanged);
        QSignalSpy index(handlers_.get(), &UndoHandlerStack::indexChanged);
        a_->push(new QUndoCommand);
        handlers_->push(a_.get());
        QVERIFY(canUndo.contains({true}));
        QVERIFY(canRedo.contains({false}));
        QVERIFY(clean.contains({false}));
        QVERIFY(index.contains({1}));

        canUndo.clear();
        clean.clear();
        index.clear();
        handlers_->push(b_.get());
        QVERIFY(canUndo.contains({false}));
        QVERIFY(clean.contains({true}));
        QVERIFY(index.contains({0}));

        canUndo.clear();
        index.clear();
        handlers_->pop();
        QVERIFY(canUndo.contains({true}));
        QVERIFY(index.contains({1}));
    }

    void emitsOnlyTheNewStateOnPop()
    {
        a_->push(new QUndoCommand);
        handlers_->push(a_.get());
        handlers_->push(b_.get());
        QSignalSpy const canUndo(handlers_.get(), &UndoHandlerStack::canUndoChanged);
        handlers_->pop();
        // pop() must activate the next stack before it removes the popped stack. Otherwise QUndoGroup would emit
        // canUndoChanged(false) between the two steps.
        QVERIFY(canUndo.contains({true}));
        QVERIFY(!canUndo.contains({false}));
    }

    void updatesItsStateBeforeItEmitsSignalsForAPush()
    {
        a_->push(new QUndoCommand);
        int emissions = 0;
        connect(handlers_.get(), &UndoHandlerStack::indexChanged, this, [&] {
            ++emissions;
            QVERIFY(!handlers_->empty());
            QCOMPARE(handlers_->activeStack(), a_.get());
        });
        handlers_->push(a_.get());
        QVERIFY(emissions > 0);
    }

    void updatesItsStateBeforeItEmitsSignalsForAPop_data()
    {
        QTest::addColumn<bool>("isLast");
        QTest::newRow("only stack") << true;
        QTest::newRow("stack above another one") << false;
    }

    void updatesItsStateBeforeItEmitsSignalsForAPop()
    {
        QFETCH(bool, isLast);
        auto* const group = handlers_->findChild<QUndoGroup*>();
        if (!isLast) {
            handlers_->push(a_.get());
        }
        b_->push(new QUndoCommand);
        handlers_->push(b_.get());
        int emissions = 0;
        connect(handlers_.get(), &UndoHandlerStack::indexChanged, this, [&] {
            ++emissions;
            QCOMPARE(handlers_->empty(), isLast);
            QCOMPARE(handlers_->activeStack(), isLast ? nullptr : a_.get());
            // pop() has not removed the popped stack from the group yet: pop() activates the next stack first.
            QVERIFY(group->stacks().contains(b_.get()));
        });
        QCOMPARE(handlers_->pop(), b_.get());
        QVERIFY(emissions > 0);
        QVERIFY(!group->stacks().contains(b_.get()));
    }

    void removesAStackThatWasPushedTwiceAtTheFirstPop()
    {
        handlers_->push(a_.get());
        handlers_->push(a_.get());
        QCOMPARE(handlers_->pop(), a_.get());
        QCOMPARE(handlers_->activeStack(), nullptr); // QUndoGroup deactivates a stack when the stack is removed
        QVERIFY(!handlers_->empty());
        QCOMPARE(handlers_->pop(), a_.get());
        QVERIFY(handlers_->empty());
    }

    void forwardsSignalsOfTheActiveStackOnly()
    {
        handlers_->push(a_.get());
        handlers_->push(b_.get());
        QSignalSpy canRedo(handlers_.get(), &UndoHandlerStack::canRedoChanged);
        QSignalSpy canUndo(handlers_.get(), &UndoHandlerStack::canUndoChanged);
        QSignalSpy clean(handlers_.get(), &UndoHandlerStack::cleanChanged);
        QSignalSpy index(handlers_.get(), &UndoHandlerStack::indexChanged);
        a_->push(new QUndoCommand);
        QCOMPARE(canRedo.count(), 0);
        QCOMPARE(canUndo.count(), 0);
        QCOMPARE(clean.count(), 0);
        QCOMPARE(index.count(), 0);

        b_->push(new QUndoCommand);
        QCOMPARE(canUndo.count({true}), 1);
        QCOMPARE(clean.count({false}), 1);
        QCOMPARE(index.count({1}), 1);

        canRedo.clear();
        canUndo.clear();
        handlers_->undo();
        QCOMPARE(canRedo.count({true}), 1);
        QCOMPARE(canUndo.count({false}), 1);
    }

    void supportsStringBasedConnections()
    {
        QSignalSpy const spy(handlers_.get(), SIGNAL(canUndoChanged(bool)));
        QVERIFY(spy.isValid());
        a_->push(new QUndoCommand);
        handlers_->push(a_.get());
        QCOMPARE(spy.last().first().toBool(), true);
    }

    void throwsForANullStack()
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

    void keepsTheEntryOfADestroyedStack()
    {
        handlers_->push(a_.get());
        a_.reset();
        QCOMPARE(handlers_->activeStack(), nullptr);
        QVERIFY(!handlers_->empty());
        QVERIFY(!handlers_->canUndo());
    }

    void activatesNoStackInPlaceOfADestroyedOne()
    {
        handlers_->push(a_.get());
        handlers_->push(b_.get());
        a_.reset();
        QCOMPARE(handlers_->pop(), b_.get());
        QCOMPARE(handlers_->activeStack(), nullptr);
        handlers_->undo();
        QVERIFY(!handlers_->empty());
    }

    void returnsNullWhenItPopsADestroyedStack()
    {
        handlers_->push(a_.get());
        handlers_->push(b_.get());
        b_.reset();
        QCOMPARE(handlers_->pop(), nullptr);
        QCOMPARE(handlers_->activeStack(), a_.get());
        QCOMPARE(handlers_->pop(), a_.get());
        QVERIFY(handlers_->empty());
    }

    void deactivatesADestroyedStackThatWasPushedTwice()
    {
        handlers_->push(a_.get());
        handlers_->push(b_.get());
        handlers_->push(a_.get());
        QCOMPARE(handlers_->pop(), a_.get());
        QCOMPARE(handlers_->pop(), b_.get());
        QCOMPARE(handlers_->activeStack(), a_.get());

        QSignalSpy const index(handlers_.get(), &UndoHandlerStack::indexChanged);
        a_.reset();
        QCOMPARE(index.count({0}), 1);
        QCOMPARE(handlers_->activeStack(), nullptr);
        QVERIFY(!handlers_->canUndo());
        handlers_->undo();
        QCOMPARE(handlers_->pop(), nullptr);
        QVERIFY(handlers_->empty());
    }

    void returnsNullIfASignalOfPopDestroysThePoppedStack()
    {
        handlers_->push(a_.get());
        handlers_->push(b_.get());
        connect(handlers_.get(), &UndoHandlerStack::indexChanged, this, [this] { b_.reset(); });
        QCOMPARE(handlers_->pop(), nullptr);
        QCOMPARE(handlers_->activeStack(), a_.get());
    }

    void doesNotOwnTheStacks()
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
    }

    void TearDown() override
    {
        handlers_.reset();
        a_.reset();
        b_.reset();
    }

private:
    std::unique_ptr<UndoHandlerStack> handlers_;
    std::unique_ptr<QUndoStack> a_;
    std::unique_ptr<QUndoStack> b_;
};

ZQTUTIL_WIDGET_TEST_MAIN(UndoHandlerStackTest)

#include "UndoHandlerStackTest.moc"
