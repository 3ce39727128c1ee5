#include <support/ProgrammingError.h>
#include <unit/connections/ExclusiveClientTestCase.h>

#include <QtCore/QMetaMethod>
#include <QtTest/QtTest>

#include <memory>
#include <stdexcept>
#include <type_traits>

using Zelkor::Testing::CatchProgrammingError;

static_assert(std::is_base_of_v<QObject, ExclusiveClient>);
static_assert(std::is_constructible_v<ExclusiveClient, ExclusiveService*, QObject*>);
static_assert(!std::is_convertible_v<ExclusiveService*, ExclusiveClient>);
static_assert(std::is_polymorphic_v<ExclusiveClient> && std::has_virtual_destructor_v<ExclusiveClient>);
static_assert(std::is_nothrow_destructible_v<ExclusiveClient> && !std::is_final_v<ExclusiveClient>);
static_assert(!std::is_copy_constructible_v<ExclusiveClient> && !std::is_copy_assignable_v<ExclusiveClient>);
static_assert(!std::is_move_constructible_v<ExclusiveClient> && !std::is_move_assignable_v<ExclusiveClient>);
static_assert(std::is_same_v<decltype(&ExclusiveClient::isInUse), bool (ExclusiveClient::*)() const>);
static_assert(std::is_same_v<decltype(&ExclusiveClient::setService), void (ExclusiveClient::*)(ExclusiveService*)>);
static_assert(std::is_same_v<decltype(&ExclusiveClient::use), void (ExclusiveClient::*)()>);

using Operation = void (ExclusiveClient::*)();

Q_DECLARE_METATYPE(Operation)

class ExclusiveClientTest : public Zelkor::Testing::ExclusiveClientTestCase
{
    Q_OBJECT

private Q_SLOTS:
    // Tests of the public interface of ExclusiveClient

    void hasItsNameAndBase()
    {
        QMetaObject const& metaObject = ExclusiveClient::staticMetaObject;
        QCOMPARE(QByteArray(metaObject.className()), QByteArray("ExclusiveClient"));
        QVERIFY(metaObject.superClass() == &QObject::staticMetaObject);
        QCOMPARE(metaObject.propertyCount(), metaObject.propertyOffset());
        QCOMPARE(metaObject.methodCount() - metaObject.methodOffset(), 9);
    }

    void hasItsSignalsAndSlots_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QByteArray>("signature");
        QTest::addColumn<int>("access");
        int index = 0;
        for (char const* const signal :
             {"acquired()", "released()", "intercepted()", "finished()", "otherClientAppeared()"}) {
            QTest::newRow(signal) << index++ << QByteArray(signal) << static_cast<int>(QMetaMethod::Public);
        }
        for (char const* const slot : {"use()", "finalize()", "breakAll()"}) {
            QTest::newRow(slot) << index++ << QByteArray(slot) << static_cast<int>(QMetaMethod::Public);
        }
        QTest::newRow("announcement") << index << QByteArray("onClientAboutToBeChanged(QObject*,QObject*)")
                                      << static_cast<int>(QMetaMethod::Protected);
    }

    void hasItsSignalsAndSlots()
    {
        QFETCH(int, index);
        QFETCH(QByteArray, signature);
        QFETCH(int, access);
        QMetaObject const& metaObject = ExclusiveClient::staticMetaObject;
        QMetaMethod const method = metaObject.method(metaObject.methodOffset() + index);
        QCOMPARE(method.methodSignature(), signature);
        QCOMPARE(method.methodType(), index < 5 ? QMetaMethod::Signal : QMetaMethod::Slot);
        QCOMPARE(static_cast<int>(method.access()), access);
        QCOMPARE(method.returnType(), static_cast<int>(QMetaType::Void));
    }

    void isOwnedByItsParent()
    {
        auto parent = std::make_unique<QObject>();
        QPointer<ExclusiveClient> const owned(new ExclusiveClient(service_.get(), parent.get()));
        QCOMPARE(owned->parent(), parent.get());
        parent.reset();
        QVERIFY(owned.isNull());
    }

    void mayBeOwnedByItsService()
    {
        a_->setParent(service_.get());
        a_->use();
        log_.clear();

        service_.reset();

        QVERIFY(!a_);
        QCOMPARE(log_, QByteArrayList());
    }

    void slotsCanBeConnectedByName()
    {
        QObject sender;
        QVERIFY(QObject::connect(&sender, SIGNAL(objectNameChanged(QString)), a_, SLOT(use())));
        sender.setObjectName(QStringLiteral("use"));
        QVERIFY(a_->isInUse());

        QVERIFY(QObject::disconnect(&sender, nullptr, a_, nullptr));
        QVERIFY(QObject::connect(&sender, SIGNAL(objectNameChanged(QString)), a_, SLOT(finalize())));
        sender.setObjectName(QStringLiteral("finalize"));
        QVERIFY(!a_->isInUse());

        b_->use();
        QVERIFY(QObject::connect(&sender, SIGNAL(objectNameChanged(QString)), a_, SLOT(breakAll())));
        sender.setObjectName(QStringLiteral("breakAll"));
        QCOMPARE(service_->currentClient(), nullptr);
    }

    // Tests of clients that use the service

    void takesAFreeService()
    {
        a_->use();

        QCOMPARE(log_, (QByteArrayList{"announced nobody -> A", "B otherClientAppeared", "C otherClientAppeared",
                                       "changed to A", "A acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"A"});
    }

    void takesTheServiceFromAnotherClient()
    {
        b_->use();
        log_.clear();

        a_->use();

        QCOMPARE(log_, (QByteArrayList{"announced B -> A", "B released", "B intercepted", "C otherClientAppeared",
                                       "changed to A", "A acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"A"});
    }

    void usingTheServiceAgainChangesNothing()
    {
        a_->use();
        log_.clear();

        a_->use();

        QCOMPARE(log_, QByteArrayList());
        QCOMPARE(ClientsInUse(), QByteArrayList{"A"});
    }

    void takesTheServiceAgainAfterFinalize()
    {
        a_->use();
        a_->finalize();
        log_.clear();

        a_->use();

        QCOMPARE(log_, (QByteArrayList{"announced nobody -> A", "B otherClientAppeared", "C otherClientAppeared",
                                       "changed to A", "A acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"A"});
    }

    void takesTheServiceFromAnObjectThatIsNoClient()
    {
        service_->setClient(outsider_.get());
        log_.clear();

        a_->use();

        QCOMPARE(log_, (QByteArrayList{"announced outsider -> A", "B otherClientAppeared", "C otherClientAppeared",
                                       "changed to A", "A acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"A"});
    }

    void isInterceptedByAnotherClient()
    {
        a_->use();
        log_.clear();

        b_->use();

        QCOMPARE(log_, (QByteArrayList{"announced A -> B", "A released", "A intercepted", "C otherClientAppeared",
                                       "changed to B", "B acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"B"});
    }

    void isInterceptedByAnObjectThatIsNoClient()
    {
        a_->use();
        log_.clear();

        service_->setClient(outsider_.get());

        QCOMPARE(log_, (QByteArrayList{"announced A -> outsider", "A released", "A intercepted",
                                       "B otherClientAppeared", "C otherClientAppeared", "changed to outsider"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void observesAHandOverBetweenOtherClients()
    {
        c_->use();
        log_.clear();

        b_->use();

        QCOMPARE(log_, (QByteArrayList{"announced C -> B", "A otherClientAppeared", "C released", "C intercepted",
                                       "changed to B", "B acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"B"});
    }

    void finalizeReleasesTheService()
    {
        a_->use();
        log_.clear();

        a_->finalize();

        QCOMPARE(log_, (QByteArrayList{"announced A -> nobody", "changed to nobody", "A released", "A finished"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void finalizeKeepsTheServiceOfAnotherClient()
    {
        b_->use();
        log_.clear();

        a_->finalize();

        QCOMPARE(log_, QByteArrayList());
        QCOMPARE(ClientsInUse(), QByteArrayList{"B"});
    }

    void finalizeKeepsTheServiceOfAnObjectThatIsNoClient()
    {
        service_->setClient(outsider_.get());
        log_.clear();

        a_->finalize();

        QCOMPARE(log_, QByteArrayList());
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void finalizeOfAFreeServiceChangesNothing()
    {
        a_->finalize();

        QCOMPARE(log_, QByteArrayList());
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void secondFinalizeChangesNothing()
    {
        a_->use();
        a_->finalize();
        log_.clear();

        a_->finalize();

        QCOMPARE(log_, QByteArrayList());
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void breakAllInterceptsTheClientItself()
    {
        a_->use();
        log_.clear();

        a_->breakAll();

        QCOMPARE(log_, (QByteArrayList{"announced A -> nobody", "A released", "A intercepted", "changed to nobody"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void breakAllInterceptsAnotherClient()
    {
        b_->use();
        log_.clear();

        a_->breakAll();

        QCOMPARE(log_, (QByteArrayList{"announced B -> nobody", "B released", "B intercepted", "changed to nobody"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void breakAllRemovesAnObjectThatIsNoClient()
    {
        service_->setClient(outsider_.get());
        log_.clear();

        a_->breakAll();

        QCOMPARE(log_, (QByteArrayList{"announced outsider -> nobody", "changed to nobody"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void breakAllOfAFreeServiceChangesNothing()
    {
        a_->breakAll();

        QCOMPARE(log_, QByteArrayList());
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void isInterceptedWhenTheServiceIsReset()
    {
        a_->use();
        log_.clear();

        service_->setClient(nullptr);

        QCOMPARE(log_, (QByteArrayList{"announced A -> nobody", "A released", "A intercepted", "changed to nobody"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void leavingTheServiceFinishesTheUse()
    {
        a_->use();
        log_.clear();

        a_->setService(nullptr);

        QCOMPARE(log_, (QByteArrayList{"announced A -> nobody", "changed to nobody", "A released", "A finished"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void movingToAnotherServiceFinishesTheUse()
    {
        a_->use();
        log_.clear();

        a_->setService(otherService_.get());

        QCOMPARE(log_, (QByteArrayList{"announced A -> nobody", "changed to nobody", "A released", "A finished"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void settingTheSameServiceFinishesTheUse()
    {
        a_->use();
        log_.clear();

        a_->setService(service_.get());

        QCOMPARE(log_, (QByteArrayList{"announced A -> nobody", "changed to nobody", "A released", "A finished"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void destructionFinishesTheUse()
    {
        a_->use();
        log_.clear();

        delete a_;

        QCOMPARE(log_, (QByteArrayList{"announced A -> nobody", "changed to nobody", "A released", "A finished"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void leavingTheServiceWhileIdleEmitsNothing()
    {
        b_->use();
        log_.clear();

        a_->setService(nullptr);

        QCOMPARE(log_, QByteArrayList());
        QCOMPARE(ClientsInUse(), QByteArrayList{"B"});
    }

    void movingToAnotherServiceWhileIdleEmitsNothing()
    {
        b_->use();
        log_.clear();

        a_->setService(otherService_.get());

        QCOMPARE(log_, QByteArrayList());
        QCOMPARE(ClientsInUse(), QByteArrayList{"B"});
    }

    void settingTheSameServiceWhileIdleEmitsNothing()
    {
        b_->use();
        log_.clear();

        a_->setService(service_.get());

        QCOMPARE(log_, QByteArrayList());
        QCOMPARE(ClientsInUse(), QByteArrayList{"B"});
    }

    void destructionWhileIdleEmitsNothing()
    {
        b_->use();
        log_.clear();

        delete a_;

        QCOMPARE(log_, QByteArrayList());
        QCOMPARE(ClientsInUse(), QByteArrayList{"B"});
    }

    void settingTheSameServiceConnectsOnlyOnce()
    {
        a_->setService(service_.get());
        log_.clear();

        a_->use();

        QCOMPARE(log_, (QByteArrayList{"announced nobody -> A", "B otherClientAppeared", "C otherClientAppeared",
                                       "changed to A", "A acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"A"});
    }

    void ignoresTheServiceThatItHasLeft()
    {
        a_->setService(nullptr);
        log_.clear();

        b_->use();
        c_->use();

        QCOMPARE(log_,
                 (QByteArrayList{"announced nobody -> B", "C otherClientAppeared", "changed to B", "B acquired",
                                 "announced B -> C", "B released", "B intercepted", "changed to C", "C acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"C"});
    }

    void reactsOnlyToTheServiceThatItMovedTo()
    {
        a_->setService(otherService_.get());
        log_.clear();

        b_->use();
        a_->use();
        a_->finalize();

        QCOMPARE(log_, (QByteArrayList{"announced nobody -> B", "C otherClientAppeared", "changed to B", "B acquired",
                                       "other service announced nobody -> A", "other service changed to A",
                                       "A acquired", "other service announced A -> nobody",
                                       "other service changed to nobody", "A released", "A finished"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"B"});
    }

    void clientsOfTwoServicesAreInUseTogether()
    {
        a_->setService(otherService_.get());
        a_->use();
        log_.clear();

        b_->use();

        QCOMPARE(log_,
                 (QByteArrayList{"announced nobody -> B", "C otherClientAppeared", "changed to B", "B acquired"}));
        QCOMPARE(ClientsInUse(), (QByteArrayList{"A", "B"}));
    }

    void isNotInUseWhenItsServiceIsDestroyed()
    {
        a_->use();
        log_.clear();

        service_.reset();

        QCOMPARE(log_, QByteArrayList());
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void leavesADestroyedServiceSilently()
    {
        a_->use();
        service_.reset();
        log_.clear();

        a_->setService(nullptr);

        QCOMPARE(log_, QByteArrayList());
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void movesFromADestroyedServiceToAnother()
    {
        a_->use();
        service_.reset();
        log_.clear();

        a_->setService(otherService_.get());
        a_->use();

        QCOMPARE(log_,
                 (QByteArrayList{"other service announced nobody -> A", "other service changed to A", "A acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"A"});
    }

    void isDestroyedSilentlyAfterItsService()
    {
        a_->use();
        service_.reset();
        log_.clear();

        delete a_;

        QCOMPARE(log_, QByteArrayList());
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void leavingDisconnectsEverySlotOfTheClientFromTheService()
    {
        int callsForClient = 0;
        int callsForOthers = 0;
        QObject::connect(service_.get(), &ExclusiveService::clientChanged, a_, [&callsForClient] { ++callsForClient; });
        QObject::connect(service_.get(), &ExclusiveService::clientChanged, this,
                         [&callsForOthers] { ++callsForOthers; });
        a_->use();
        QCOMPARE(callsForClient, 1);
        QCOMPARE(callsForOthers, 1);

        // setService() first disconnects all slots whose context object is the client. Then it releases the service.
        // Therefore, clientChanged() calls only the slot whose context object is `this`.
        a_->setService(nullptr);

        QCOMPARE(callsForClient, 1);
        QCOMPARE(callsForOthers, 2);
    }

    // Tests of the state of the clients while a slot runs

    void nobodyIsInUseInsideIntercepted()
    {
        QByteArrayList inUse{"not called"};
        a_->use();
        Once(a_, &ExclusiveClient::intercepted, [&] { inUse = ClientsInUse(); });
        b_->use();
        QCOMPARE(inUse, QByteArrayList());
    }

    void nobodyIsInUseInsideReleasedOfAnInterceptedClient()
    {
        QByteArrayList inUse{"not called"};
        a_->use();
        Once(a_, &ExclusiveClient::released, [&] { inUse = ClientsInUse(); });
        b_->use();
        QCOMPARE(inUse, QByteArrayList());
    }

    void nobodyIsInUseInsideOtherClientAppeared()
    {
        QByteArrayList inUse{"not called"};
        a_->use();
        Once(c_, &ExclusiveClient::otherClientAppeared, [&] { inUse = ClientsInUse(); });
        b_->use();
        QCOMPARE(inUse, QByteArrayList());
    }

    void theNewClientIsInUseInsideAcquired()
    {
        QByteArrayList inUse{"not called"};
        a_->use();
        Once(b_, &ExclusiveClient::acquired, [&] { inUse = ClientsInUse(); });
        b_->use();
        QCOMPARE(inUse, QByteArrayList{"B"});
    }

    void nobodyIsInUseInsideReleasedOfAFinalizedClient()
    {
        QByteArrayList inUse{"not called"};
        a_->use();
        Once(a_, &ExclusiveClient::released, [&] { inUse = ClientsInUse(); });
        a_->finalize();
        QCOMPARE(inUse, QByteArrayList());
    }

    void nobodyIsInUseInsideFinished()
    {
        QByteArrayList inUse{"not called"};
        a_->use();
        Once(a_, &ExclusiveClient::finished, [&] { inUse = ClientsInUse(); });
        a_->finalize();
        QCOMPARE(inUse, QByteArrayList());
    }

    // In the tests below, Announce() directly calls the client's slot for the signal clientAboutToBeChanged(). The slot
    // must use only its arguments (the old and the new client), not the current client of the service.

    void isInterceptedByAnAnnouncementFromItselfToAnother()
    {
        QByteArrayList const expected{"A released", "A intercepted"};
        Announce(a_, a_, b_);
        QCOMPARE(log_, expected);
        Announce(a_, a_, b_);
        QCOMPARE(log_, expected + expected);
    }

    void isInterceptedByAnAnnouncementFromItselfToNobody()
    {
        QByteArrayList const expected{"A released", "A intercepted"};
        Announce(a_, a_, nullptr);
        QCOMPARE(log_, expected);
        Announce(a_, a_, nullptr);
        QCOMPARE(log_, expected + expected);
    }

    void ignoresAnAnnouncementFromItselfToItself()
    {
        Announce(a_, a_, a_);
        QCOMPARE(log_, QByteArrayList());
        Announce(a_, a_, a_);
        QCOMPARE(log_, QByteArrayList());
    }

    void ignoresAnAnnouncementFromAnotherToItself()
    {
        Announce(a_, b_, a_);
        QCOMPARE(log_, QByteArrayList());
        Announce(a_, b_, a_);
        QCOMPARE(log_, QByteArrayList());
    }

    void ignoresAnAnnouncementFromNobodyToItself()
    {
        Announce(a_, nullptr, a_);
        QCOMPARE(log_, QByteArrayList());
        Announce(a_, nullptr, a_);
        QCOMPARE(log_, QByteArrayList());
    }

    void observesAnAnnouncementFromAnotherToAThird()
    {
        QByteArrayList const expected{"A otherClientAppeared"};
        Announce(a_, b_, outsider_.get());
        QCOMPARE(log_, expected);
        Announce(a_, b_, outsider_.get());
        QCOMPARE(log_, expected + expected);
    }

    void observesAnAnnouncementFromNobodyToAnother()
    {
        QByteArrayList const expected{"A otherClientAppeared"};
        Announce(a_, nullptr, b_);
        QCOMPARE(log_, expected);
        Announce(a_, nullptr, b_);
        QCOMPARE(log_, expected + expected);
    }

    void ignoresAnAnnouncementFromAnotherToNobody()
    {
        Announce(a_, b_, nullptr);
        QCOMPARE(log_, QByteArrayList());
        Announce(a_, b_, nullptr);
        QCOMPARE(log_, QByteArrayList());
    }

    void ignoresAnAnnouncementFromNobodyToNobody()
    {
        Announce(a_, nullptr, nullptr);
        QCOMPARE(log_, QByteArrayList());
        Announce(a_, nullptr, nullptr);
        QCOMPARE(log_, QByteArrayList());
    }

    // Tests of clients without a service

    void isNotInUseWithoutAService()
    {
        QVERIFY(!ExclusiveClient(nullptr, nullptr).isInUse());
        a_->use();
        service_.reset();
        QVERIFY(!a_->isInUse());
    }

    void throwsIfItNeverHadAService_data() { AddOperations(); }

    void throwsIfItNeverHadAService()
    {
        ExclusiveClient client(nullptr, nullptr);
        VerifyOperationThrows(client);
    }

    void throwsAfterItHasLeftItsService_data() { AddOperations(); }

    void throwsAfterItHasLeftItsService()
    {
        a_->setService(nullptr);
        VerifyOperationThrows(*a_);
    }

    void throwsAfterItsServiceIsDestroyedWhileIdle_data() { AddOperations(); }

    void throwsAfterItsServiceIsDestroyedWhileIdle()
    {
        service_.reset();
        VerifyOperationThrows(*a_);
    }

    void throwsAfterItsServiceIsDestroyedWhileInUse_data() { AddOperations(); }

    void throwsAfterItsServiceIsDestroyedWhileInUse()
    {
        a_->use();
        service_.reset();
        VerifyOperationThrows(*a_);
    }

private:
    static void AddOperations()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<Operation>("operation");
        QTest::newRow("use") << QStringLiteral("use") << Operation(&ExclusiveClient::use);
        QTest::newRow("finalize") << QStringLiteral("finalize") << Operation(&ExclusiveClient::finalize);
        QTest::newRow("breakAll") << QStringLiteral("breakAll") << Operation(&ExclusiveClient::breakAll);
    }

    static void VerifyOperationThrows(ExclusiveClient& client)
    {
        QFETCH(QString, name);
        QFETCH(Operation, operation);
        auto const error = CatchProgrammingError<std::logic_error>([&] { (client.*operation)(); });
        QCOMPARE(error.message, QStringLiteral("ExclusiveClient use without service!"));
        QVERIFY2(error.callStack.contains(QStringLiteral("ExclusiveClient::") + name), qPrintable(error.callStack));
        QCOMPARE(error.file, QStringLiteral("Util/ExclusiveClient.cpp"));
        QVERIFY2(error.function.contains(QStringLiteral("ExclusiveClient::")), qPrintable(error.function));
        QVERIFY(error.line > 0);
    }
};

ZQTUTIL_TEST_MAIN(ExclusiveClientTest)

#include "ExclusiveClientTest.moc"
