// Tests in which slots destroy clients or services, change the service of a client, or throw an exception.

#include <support/processes/ChildProcess.h>
#include <unit/connections/ExclusiveClientTestCase.h>

#include <QtTest/QtTest>

#include <cstdlib>
#include <exception>
#include <optional>
#include <stdexcept>
#include <utility>

using Zelkor::Testing::SlotError;

class ExclusiveClientReentryTest : public Zelkor::Testing::ExclusiveClientTestCase
{
    Q_OBJECT

private Q_SLOTS:
    // Tests with slots that destroy or change clients and services

    void mayBeDestroyedInAcquired()
    {
        Once(a_, &ExclusiveClient::acquired, [this] { delete a_; });

        a_->use();

        QCOMPARE(log_, (QByteArrayList{"announced nobody -> A", "B otherClientAppeared", "C otherClientAppeared",
                                       "changed to A", "A acquired", "announced A -> nobody", "changed to nobody",
                                       "A released", "A finished"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void mayBeDestroyedInReleasedWhenIntercepted()
    {
        a_->use();
        log_.clear();
        Once(a_, &ExclusiveClient::released, [this] { delete a_; });

        b_->use();

        QCOMPARE(log_, (QByteArrayList{"announced A -> B", "A released", "C otherClientAppeared", "changed to B",
                                       "B acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"B"});
    }

    void mayBeDestroyedInIntercepted()
    {
        a_->use();
        log_.clear();
        Once(a_, &ExclusiveClient::intercepted, [this] { delete a_; });

        b_->use();

        QCOMPARE(log_, (QByteArrayList{"announced A -> B", "A released", "A intercepted", "C otherClientAppeared",
                                       "changed to B", "B acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"B"});
    }

    void mayBeDestroyedInReleasedWhenFinalized()
    {
        a_->use();
        log_.clear();
        Once(a_, &ExclusiveClient::released, [this] { delete a_; });

        a_->finalize();

        QCOMPARE(log_, (QByteArrayList{"announced A -> nobody", "changed to nobody", "A released"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void mayBeDestroyedInFinished()
    {
        a_->use();
        log_.clear();
        Once(a_, &ExclusiveClient::finished, [this] { delete a_; });

        a_->finalize();

        QCOMPARE(log_, (QByteArrayList{"announced A -> nobody", "changed to nobody", "A released", "A finished"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void mayBeDestroyedInFinishedWhenMoved()
    {
        a_->use();
        log_.clear();
        Once(a_, &ExclusiveClient::finished, [this] { delete a_; });

        a_->setService(otherService_.get());

        QCOMPARE(log_, (QByteArrayList{"announced A -> nobody", "changed to nobody", "A released", "A finished"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void mayBeDestroyedInOtherClientAppeared()
    {
        Once(a_, &ExclusiveClient::otherClientAppeared, [this] { delete a_; });

        b_->use();

        QCOMPARE(log_, (QByteArrayList{"announced nobody -> B", "A otherClientAppeared", "C otherClientAppeared",
                                       "changed to B", "B acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"B"});
    }

    void mayBeDestroyedWhenItsReleaseIsAnnounced()
    {
        a_->use();
        log_.clear();
        OnceAnnounced([this] { delete a_; });

        a_->finalize();

        QCOMPARE(log_, (QByteArrayList{"announced A -> nobody", "changed to nobody"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void mayBeDestroyedWhenItsInterceptionIsAnnounced()
    {
        a_->use();
        log_.clear();
        OnceAnnounced([this] { delete a_; });

        b_->use();

        QCOMPARE(log_, (QByteArrayList{"announced A -> B", "C otherClientAppeared", "changed to B", "B acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"B"});
    }

    void newClientMayBeDestroyedInInterceptedOfTheOldClient()
    {
        a_->use();
        log_.clear();
        Once(a_, &ExclusiveClient::intercepted, [this] { delete b_; });

        b_->use();

        QCOMPARE(log_, (QByteArrayList{"announced A -> B", "A released", "A intercepted", "C otherClientAppeared",
                                       "changed to nobody"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void serviceMayBeDestroyedInAcquired()
    {
        Once(a_, &ExclusiveClient::acquired, [this] { service_.reset(); });

        a_->use();

        QCOMPARE(log_, (QByteArrayList{"announced nobody -> A", "B otherClientAppeared", "C otherClientAppeared",
                                       "changed to A", "A acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void serviceMayBeDestroyedInReleasedWhenIntercepted()
    {
        a_->use();
        log_.clear();
        Once(a_, &ExclusiveClient::released, [this] { service_.reset(); });

        b_->use();

        QCOMPARE(log_, (QByteArrayList{"announced A -> B", "A released", "A intercepted"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void serviceMayBeDestroyedInIntercepted()
    {
        a_->use();
        log_.clear();
        Once(a_, &ExclusiveClient::intercepted, [this] { service_.reset(); });

        b_->use();

        QCOMPARE(log_, (QByteArrayList{"announced A -> B", "A released", "A intercepted"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void serviceMayBeDestroyedInReleasedWhenFinalized()
    {
        a_->use();
        log_.clear();
        Once(a_, &ExclusiveClient::released, [this] { service_.reset(); });

        a_->finalize();

        QCOMPARE(log_, (QByteArrayList{"announced A -> nobody", "changed to nobody", "A released", "A finished"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void serviceMayBeDestroyedInFinished()
    {
        a_->use();
        log_.clear();
        Once(a_, &ExclusiveClient::finished, [this] { service_.reset(); });

        a_->finalize();

        QCOMPARE(log_, (QByteArrayList{"announced A -> nobody", "changed to nobody", "A released", "A finished"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void serviceMayBeDestroyedInFinishedWhenMoved()
    {
        a_->use();
        log_.clear();
        Once(a_, &ExclusiveClient::finished, [this] { service_.reset(); });

        a_->setService(otherService_.get());
        a_->use();

        QCOMPARE(log_,
                 (QByteArrayList{"announced A -> nobody", "changed to nobody", "A released", "A finished",
                                 "other service announced nobody -> A", "other service changed to A", "A acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"A"});
    }

    void serviceMayBeDestroyedInOtherClientAppeared()
    {
        Once(a_, &ExclusiveClient::otherClientAppeared, [this] { service_.reset(); });

        b_->use();

        QCOMPARE(log_, (QByteArrayList{"announced nobody -> B", "A otherClientAppeared"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void serviceMayBeDestroyedWhenAReleaseIsAnnounced()
    {
        a_->use();
        log_.clear();
        OnceAnnounced([this] { service_.reset(); });

        a_->finalize();

        QCOMPARE(log_, (QByteArrayList{"announced A -> nobody", "A released", "A finished"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void mayMoveInAcquired()
    {
        Once(a_, &ExclusiveClient::acquired, [this] { a_->setService(otherService_.get()); });

        a_->use();
        a_->use();

        QCOMPARE(log_, (QByteArrayList{"announced nobody -> A", "B otherClientAppeared", "C otherClientAppeared",
                                       "changed to A", "A acquired", "announced A -> nobody", "changed to nobody",
                                       "A released", "A finished", "other service announced nobody -> A",
                                       "other service changed to A", "A acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"A"});
    }

    void givesUpAServiceThatItLeavesDuringTheTransfer_data()
    {
        QTest::addColumn<bool>("hasNewService");
        QTest::newRow("another service") << true;
        QTest::newRow("no service") << false;
    }

    void givesUpAServiceThatItLeavesDuringTheTransfer()
    {
        QFETCH(bool, hasNewService);
        OnceAnnounced([=] { a_->setService(hasNewService ? otherService_.get() : nullptr); });

        a_->use();

        QCOMPARE(service_->currentClient(), nullptr);
        QCOMPARE(ClientsInUse(), QByteArrayList());
        QCOMPARE(log_, (QByteArrayList{"announced nobody -> A", "B otherClientAppeared", "C otherClientAppeared",
                                       "changed to A", "announced A -> nobody", "changed to nobody"}));
    }

    void mayLeaveInReleasedWhenIntercepted()
    {
        a_->use();
        log_.clear();
        Once(a_, &ExclusiveClient::released, [this] { a_->setService(nullptr); });

        b_->use();
        c_->use();

        QCOMPARE(log_, (QByteArrayList{"announced A -> B", "A released", "A intercepted", "C otherClientAppeared",
                                       "changed to B", "B acquired", "announced B -> C", "B released", "B intercepted",
                                       "changed to C", "C acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"C"});
    }

    void mayMoveInIntercepted()
    {
        a_->use();
        log_.clear();
        Once(a_, &ExclusiveClient::intercepted, [this] { a_->setService(otherService_.get()); });

        b_->use();
        a_->use();

        QCOMPARE(log_, (QByteArrayList{"announced A -> B", "A released", "A intercepted", "C otherClientAppeared",
                                       "changed to B", "B acquired", "other service announced nobody -> A",
                                       "other service changed to A", "A acquired"}));
        QCOMPARE(ClientsInUse(), (QByteArrayList{"A", "B"}));
    }

    void mayLeaveInOtherClientAppeared()
    {
        Once(a_, &ExclusiveClient::otherClientAppeared, [this] { a_->setService(nullptr); });

        b_->use();
        c_->use();

        QCOMPARE(log_, (QByteArrayList{"announced nobody -> B", "A otherClientAppeared", "C otherClientAppeared",
                                       "changed to B", "B acquired", "announced B -> C", "B released", "B intercepted",
                                       "changed to C", "C acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"C"});
    }

    void mayMoveInFinished()
    {
        a_->use();
        log_.clear();
        Once(a_, &ExclusiveClient::finished, [this] { a_->setService(otherService_.get()); });

        a_->finalize();
        a_->use();

        QCOMPARE(log_,
                 (QByteArrayList{"announced A -> nobody", "changed to nobody", "A released", "A finished",
                                 "other service announced nobody -> A", "other service changed to A", "A acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"A"});
    }

    void leavingOverridesAMoveInFinished()
    {
        a_->use();
        log_.clear();
        Once(a_, &ExclusiveClient::finished, [this] { a_->setService(otherService_.get()); });

        a_->setService(nullptr);
        otherService_->setClient(outsider_.get());

        QCOMPARE(log_,
                 (QByteArrayList{"announced A -> nobody", "changed to nobody", "A released", "A finished",
                                 "other service announced nobody -> outsider", "other service changed to outsider"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void movingOverridesAReturnInFinished()
    {
        a_->use();
        log_.clear();
        Once(a_, &ExclusiveClient::finished, [this] { a_->setService(service_.get()); });

        a_->setService(otherService_.get());
        b_->use();
        a_->use();

        QCOMPARE(log_,
                 (QByteArrayList{"announced A -> nobody", "changed to nobody", "A released", "A finished",
                                 "announced nobody -> B", "C otherClientAppeared", "changed to B", "B acquired",
                                 "other service announced nobody -> A", "other service changed to A", "A acquired"}));
        QCOMPARE(ClientsInUse(), (QByteArrayList{"A", "B"}));
    }

    void anotherClientMayTakeOverInAcquired()
    {
        Once(a_, &ExclusiveClient::acquired, [this] { b_->use(); });

        a_->use();

        QCOMPARE(log_, (QByteArrayList{"announced nobody -> A", "B otherClientAppeared", "C otherClientAppeared",
                                       "changed to A", "A acquired", "announced A -> B", "A released", "A intercepted",
                                       "C otherClientAppeared", "changed to B", "B acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"B"});
    }

    void mayFinalizeInAcquired()
    {
        Once(a_, &ExclusiveClient::acquired, [this] { a_->finalize(); });

        a_->use();

        QCOMPARE(log_, (QByteArrayList{"announced nobody -> A", "B otherClientAppeared", "C otherClientAppeared",
                                       "changed to A", "A acquired", "announced A -> nobody", "changed to nobody",
                                       "A released", "A finished"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void mayBreakAllInAcquired()
    {
        Once(a_, &ExclusiveClient::acquired, [this] { a_->breakAll(); });

        a_->use();

        QCOMPARE(log_, (QByteArrayList{"announced nobody -> A", "B otherClientAppeared", "C otherClientAppeared",
                                       "changed to A", "A acquired", "announced A -> nobody", "A released",
                                       "A intercepted", "changed to nobody"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void mayUseTheServiceAgainInFinished()
    {
        a_->use();
        log_.clear();
        Once(a_, &ExclusiveClient::finished, [this] { a_->use(); });

        a_->finalize();

        QCOMPARE(log_, (QByteArrayList{"announced A -> nobody", "changed to nobody", "A released", "A finished",
                                       "announced nobody -> A", "B otherClientAppeared", "C otherClientAppeared",
                                       "changed to A", "A acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"A"});
    }

    void handOverOverridesUseInIntercepted()
    {
        a_->use();
        log_.clear();
        Once(a_, &ExclusiveClient::intercepted, [this] { a_->use(); });

        b_->use();

        QCOMPARE(log_, (QByteArrayList{"announced A -> B", "A released", "A intercepted", "announced nobody -> A",
                                       "B otherClientAppeared", "C otherClientAppeared", "changed to A", "A acquired",
                                       "C otherClientAppeared", "changed to B", "B acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"B"});
    }

    void ignoresAnotherClientInFinished()
    {
        a_->use();
        log_.clear();
        Once(a_, &ExclusiveClient::finished, [this] { b_->use(); });

        a_->finalize();

        QCOMPARE(log_,
                 (QByteArrayList{"announced A -> nobody", "changed to nobody", "A released", "A finished",
                                 "announced nobody -> B", "C otherClientAppeared", "changed to B", "B acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"B"});
    }

    void ignoresAnAnnouncementInFinishedWhenItLeaves()
    {
        a_->use();
        log_.clear();
        Once(a_, &ExclusiveClient::finished, [this] { Announce(a_, nullptr, outsider_.get()); });

        a_->setService(nullptr);

        QCOMPARE(log_, (QByteArrayList{"announced A -> nobody", "changed to nobody", "A released", "A finished"}));
        QCOMPARE(ClientsInUse(), QByteArrayList());
    }

    void ignoresAnAnnouncementInIntercepted()
    {
        a_->use();
        log_.clear();
        Once(a_, &ExclusiveClient::intercepted, [this] { Announce(a_, nullptr, outsider_.get()); });

        b_->use();

        QCOMPARE(log_, (QByteArrayList{"announced A -> B", "A released", "A intercepted", "C otherClientAppeared",
                                       "changed to B", "B acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"B"});
    }

    void ignoresAnAnnouncementInOtherClientAppeared()
    {
        Once(a_, &ExclusiveClient::otherClientAppeared, [this] { Announce(a_, nullptr, outsider_.get()); });

        b_->use();

        QCOMPARE(log_, (QByteArrayList{"announced nobody -> B", "A otherClientAppeared", "C otherClientAppeared",
                                       "changed to B", "B acquired"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"B"});
    }

    void reactsToAnAnnouncementInAcquired()
    {
        Once(a_, &ExclusiveClient::acquired, [this] { Announce(a_, nullptr, outsider_.get()); });

        a_->use();

        QCOMPARE(log_, (QByteArrayList{"announced nobody -> A", "B otherClientAppeared", "C otherClientAppeared",
                                       "changed to A", "A acquired", "A otherClientAppeared"}));
        QCOMPARE(ClientsInUse(), QByteArrayList{"A"});
    }

    // A slot destroys the client and creates a new client at the same address. The new client must not emit finished()
    // in place of the destroyed client.
    void doesNotFinishIfItIsDestroyedMeanwhile()
    {
        std::optional<ExclusiveClient> client(std::in_place, service_.get(), nullptr);
        int timesFinished = 0;
        client->use();
        OnceAnnounced([&] {
            client.reset();
            client.emplace(service_.get(), nullptr);
            QObject::connect(&*client, &ExclusiveClient::finished, this, [&timesFinished] { ++timesFinished; });
        });

        client->finalize();

        QCOMPARE(timesFinished, 0);
    }

    // While setService(nullptr) runs, a slot makes the client use the backup service. setService() must release the
    // backup service too.
    void leavesAServiceThatASlotHasBoundMeanwhile()
    {
        ExclusiveService backup(nullptr);
        ExclusiveClient client(service_.get(), nullptr);
        int timesFinished = 0;
        QObject::connect(&client, &ExclusiveClient::finished, this, [&] {
            ++timesFinished;
            client.setService(&backup);
            client.use();
            QCOMPARE(backup.currentClient(), &client);
        });
        client.use();

        client.setService(nullptr);

        QCOMPARE(backup.currentClient(), nullptr);
        QCOMPARE(service_->currentClient(), nullptr);
        QVERIFY(!client.isInUse());
        QCOMPARE(timesFinished, 1);
    }

    void leavesAServiceThatASlotUsesAgainMeanwhile()
    {
        ExclusiveService other(nullptr);
        ExclusiveClient client(service_.get(), nullptr);
        QObject::connect(&client, &ExclusiveClient::finished, &client, &ExclusiveClient::use);
        client.use();

        client.setService(&other);

        QCOMPARE(service_->currentClient(), nullptr);
        client.use();
        QCOMPARE(other.currentClient(), &client);
        QObject::disconnect(&client, &ExclusiveClient::finished, nullptr, nullptr);
    }

    void hasNoServiceIfTheNewOneIsDestroyedMeanwhile()
    {
        a_->use();
        Once(a_, &ExclusiveClient::finished, [this] { otherService_.reset(); });

        a_->setService(otherService_.get());

        QVERIFY(!a_->isInUse());
        QVERIFY_EXCEPTION_THROWN(a_->use(), std::logic_error);
    }

    // Tests with slots that throw exceptions

    void reactsAgainAfterAThrowInIntercepted()
    {
        a_->use();
        Once(a_, &ExclusiveClient::intercepted, [] { throw SlotError(); });
        QVERIFY_EXCEPTION_THROWN(b_->use(), SlotError);
        VerifyClientReactsAgain();
    }

    void reactsAgainAfterAThrowInReleasedWhenIntercepted()
    {
        a_->use();
        Once(a_, &ExclusiveClient::released, [] { throw SlotError(); });
        QVERIFY_EXCEPTION_THROWN(b_->use(), SlotError);
        VerifyClientReactsAgain();
    }

    void reactsAgainAfterAThrowInOtherClientAppeared()
    {
        Once(a_, &ExclusiveClient::otherClientAppeared, [] { throw SlotError(); });
        QVERIFY_EXCEPTION_THROWN(b_->use(), SlotError);
        VerifyClientReactsAgain();
    }

    void reactsAgainAfterAThrowInFinished()
    {
        a_->use();
        Once(a_, &ExclusiveClient::finished, [] { throw SlotError(); });
        QVERIFY_EXCEPTION_THROWN(a_->finalize(), SlotError);
        VerifyClientReactsAgain();
    }

    void reactsAgainAfterAThrowInReleasedWhenFinalized()
    {
        a_->use();
        Once(a_, &ExclusiveClient::released, [] { throw SlotError(); });
        QVERIFY_EXCEPTION_THROWN(a_->finalize(), SlotError);
        VerifyClientReactsAgain();
    }

    void reactsAgainAfterAThrowInTheAnnouncementOfItsRelease()
    {
        a_->use();
        OnceAnnounced([] { throw SlotError(); });
        QVERIFY_EXCEPTION_THROWN(a_->finalize(), SlotError);
        VerifyClientReactsAgain();
    }

    void reactsAgainAfterAThrowInTheChangeByItsRelease()
    {
        a_->use();
        OnceChanged([] { throw SlotError(); });
        QVERIFY_EXCEPTION_THROWN(a_->finalize(), SlotError);
        VerifyClientReactsAgain();
    }

    void reactsAgainAfterAThrowInFinishedWhenItLeaves()
    {
        a_->use();
        Once(a_, &ExclusiveClient::finished, [] { throw SlotError(); });
        QVERIFY_EXCEPTION_THROWN(a_->setService(nullptr), SlotError);
        VerifyClientReactsAgain();
    }

    void reactsAgainAfterAThrowInTheAnnouncementWhenItLeaves()
    {
        a_->use();
        OnceAnnounced([] { throw SlotError(); });
        QVERIFY_EXCEPTION_THROWN(a_->setService(nullptr), SlotError);
        VerifyClientReactsAgain();
    }

    void reactsAgainAfterAThrowInAcquired()
    {
        Once(a_, &ExclusiveClient::acquired, [] { throw SlotError(); });
        QVERIFY_EXCEPTION_THROWN(a_->use(), SlotError);
        VerifyClientReactsAgain();
    }

    void keepsTheServiceThatItCouldNotLeave()
    {
        a_->use();
        Once(a_, &ExclusiveClient::finished, [] { throw SlotError(); });
        QVERIFY_EXCEPTION_THROWN(a_->setService(otherService_.get()), SlotError);
        QVERIFY(!a_->isInUse());
        log_.clear();

        a_->use();

        QVERIFY(a_->isInUse());
        QCOMPARE(service_->currentClient(), a_.data());
        QVERIFY(!log_.contains("A acquired"));
    }

    // The exit code of the child process is EXIT_SUCCESS only if std::terminate() is called.
    void throwDuringDestructionTerminatesTheProcess()
    {
        Zelkor::Testing::RunInChild([] {
            std::set_terminate([] { std::_Exit(EXIT_SUCCESS); });
            {
                ExclusiveService service(nullptr);
                ExclusiveClient client(&service, nullptr);
                QObject::connect(&client, &ExclusiveClient::finished, &service, [] { throw SlotError(); });
                client.use();
            }
            throw std::logic_error("The destructor has returned");
        });
    }

private:
    /// Binds the client A to the first service again, lets the clients A, B and C use this service one after another,
    /// and checks the log entries about A.
    void VerifyClientReactsAgain()
    {
        a_->setService(service_.get());
        service_->setClient(nullptr);
        log_.clear();
        a_->use();
        b_->use();
        c_->use();
        QByteArrayList entries;
        for (QByteArray const& entry : qAsConst(log_)) {
            if (entry.startsWith("A ") || entry.startsWith("announced A ")) {
                entries += entry;
            }
        }
        QCOMPARE(entries, (QByteArrayList{"A acquired", "announced A -> B", "A released", "A intercepted",
                                          "A otherClientAppeared"}));
    }
};

ZQTUTIL_TEST_MAIN(ExclusiveClientReentryTest)

#include "ExclusiveClientReentryTest.moc"
