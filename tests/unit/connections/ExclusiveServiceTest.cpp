#include <support/TestCase.h>

#include <Util/ExclusiveService.h>

#include <QtCore/QByteArrayList>
#include <QtCore/QMetaMethod>
#include <QtCore/QPointer>
#include <QtTest/QtTest>

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

static_assert(std::is_base_of_v<QObject, ExclusiveService>);
static_assert(std::is_constructible_v<ExclusiveService, QObject*> &&
              !std::is_convertible_v<QObject*, ExclusiveService>);
static_assert(std::is_polymorphic_v<ExclusiveService> && std::has_virtual_destructor_v<ExclusiveService>);
static_assert(!std::is_final_v<ExclusiveService>);
static_assert(!std::is_copy_constructible_v<ExclusiveService> && !std::is_copy_assignable_v<ExclusiveService>);
static_assert(!std::is_move_constructible_v<ExclusiveService> && !std::is_move_assignable_v<ExclusiveService>);
static_assert(std::is_same_v<decltype(&ExclusiveService::setClient), void (ExclusiveService::*)(QObject*)>);
static_assert(std::is_same_v<decltype(&ExclusiveService::currentClient), QObject* (ExclusiveService::*)() const>);
static_assert(std::is_same_v<decltype(&ExclusiveService::clientAboutToBeChanged),
                             void (ExclusiveService::*)(QObject*, QObject*)>);
static_assert(std::is_same_v<decltype(&ExclusiveService::clientChanged), void (ExclusiveService::*)(QObject*)>);

/// Object with a signal that a test connects to ExclusiveService::setClient().
class Requester : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void Requested(QObject*);
};

namespace
{

struct SlotError
{};

QObject* MakeClient(QString const& name, QObject* parent)
{
    auto* const object = new QObject(parent);
    object->setObjectName(name);
    return object;
}

QByteArray NameOf(QObject const* object)
{
    return object ? object->objectName().toLatin1() : QByteArray("nobody");
}

} // namespace

/// Tests a service with the clients A, B and C. For each signal of the service, the log contains the signal and the
/// current client at the time of the emission.
class ExclusiveServiceTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void hasItsNameAndBase()
    {
        QMetaObject const& metaObject = ExclusiveService::staticMetaObject;
        QCOMPARE(QByteArray(metaObject.className()), QByteArray("ExclusiveService"));
        QVERIFY(metaObject.superClass() == &QObject::staticMetaObject);
        QCOMPARE(metaObject.propertyCount(), metaObject.propertyOffset());
        QCOMPARE(metaObject.methodCount() - metaObject.methodOffset(), 3);
    }

    void hasItsSignalsAndSlot_data()
    {
        QTest::addColumn<QByteArray>("signature");
        QTest::addColumn<bool>("isSignal");
        QTest::addColumn<QList<QByteArray>>("names");
        QTest::newRow("announcement") << QByteArray("clientAboutToBeChanged(QObject*,QObject*)") << true
                                      << QList<QByteArray>{"from", "to"};
        QTest::newRow("change") << QByteArray("clientChanged(QObject*)") << true << QList<QByteArray>{"client"};
        QTest::newRow("slot") << QByteArray("setClient(QObject*)") << false << QList<QByteArray>{"client"};
    }

    void hasItsSignalsAndSlot()
    {
        QFETCH(QByteArray, signature);
        QFETCH(bool, isSignal);
        QFETCH(QList<QByteArray>, names);
        QMetaObject const& metaObject = ExclusiveService::staticMetaObject;
        QMetaMethod const method = metaObject.method(metaObject.indexOfMethod(signature.constData()));
        QVERIFY(method.isValid());
        QCOMPARE(method.methodType(), isSignal ? QMetaMethod::Signal : QMetaMethod::Slot);
        QCOMPARE(method.access(), QMetaMethod::Public);
        QCOMPARE(method.returnType(), static_cast<int>(QMetaType::Void));
        QCOMPARE(method.parameterNames(), names);
    }

    void isOwnedByItsParent()
    {
        auto parent = std::make_unique<QObject>();
        QPointer<ExclusiveService> const owned(new ExclusiveService(parent.get()));
        QCOMPARE(owned->parent(), parent.get());
        parent.reset();
        QVERIFY(owned.isNull());
    }

    void hasNoClientInitially() { QCOMPARE(ExclusiveService(nullptr).currentClient(), nullptr); }

    void takesAFirstClient()
    {
        service_->setClient(a_);

        QCOMPARE(log_, (QByteArrayList{"announced nobody -> A, current nobody", "changed to A, current A"}));
        QCOMPARE(service_->currentClient(), a_.data());
    }

    void replacesTheClient()
    {
        service_->setClient(a_);
        log_.clear();

        service_->setClient(b_);

        QCOMPARE(log_, (QByteArrayList{"announced A -> B, current nobody", "changed to B, current B"}));
        QCOMPARE(service_->currentClient(), b_.data());
    }

    void removesTheClient()
    {
        service_->setClient(a_);
        log_.clear();

        service_->setClient(nullptr);

        QCOMPARE(log_, (QByteArrayList{"announced A -> nobody, current nobody", "changed to nobody, current nobody"}));
        QCOMPARE(service_->currentClient(), nullptr);
    }

    void settingTheSameClientEmitsNothing()
    {
        service_->setClient(a_);
        log_.clear();

        service_->setClient(a_);

        QCOMPARE(log_, QByteArrayList());
        QCOMPARE(service_->currentClient(), a_.data());
    }

    void removingTheClientOfAFreeServiceEmitsNothing()
    {
        service_->setClient(nullptr);

        QCOMPARE(log_, QByteArrayList());
        QCOMPARE(service_->currentClient(), nullptr);
    }

    void setClientCanBeConnectedByName()
    {
        Requester requester;
        QVERIFY(QObject::connect(&requester, SIGNAL(Requested(QObject*)), service_.get(), SLOT(setClient(QObject*))));
        Q_EMIT requester.Requested(&requester);
        QCOMPARE(service_->currentClient(), &requester);
        Q_EMIT requester.Requested(nullptr);
        QCOMPARE(service_->currentClient(), nullptr);
    }

    void hasNoClientAfterItsClientIsDestroyed()
    {
        service_->setClient(a_);
        log_.clear();
        delete a_;
        QCOMPARE(service_->currentClient(), nullptr);
        service_->setClient(nullptr);
        QCOMPARE(log_, QByteArrayList());
        service_->setClient(b_);
        QCOMPARE(log_, (QByteArrayList{"announced nobody -> B, current nobody", "changed to B, current B"}));
    }

    void emitsNothingWhenDestroyed()
    {
        service_->setClient(a_);
        log_.clear();
        service_.reset();
        QCOMPARE(log_, QByteArrayList());
        QVERIFY(a_);
    }

    void newClientMayBeDestroyedDuringTheAnnouncement()
    {
        service_->setClient(a_);
        log_.clear();
        OnceAnnounced([this] { delete b_; });
        service_->setClient(b_);
        QCOMPARE(log_, (QByteArrayList{"announced A -> B, current nobody", "changed to nobody, current nobody"}));
        QCOMPARE(service_->currentClient(), nullptr);
    }

    void oldClientMayBeDestroyedDuringTheAnnouncement()
    {
        service_->setClient(a_);
        log_.clear();
        OnceAnnounced([this] { delete a_; });
        service_->setClient(b_);
        QCOMPARE(log_, (QByteArrayList{"announced A -> B, current nobody", "changed to B, current B"}));
    }

    void newClientMayBeDestroyedDuringTheChange()
    {
        OnceChanged([this] { delete a_; });
        service_->setClient(a_);
        QCOMPARE(log_, (QByteArrayList{"announced nobody -> A, current nobody", "changed to A, current A"}));
        QCOMPARE(service_->currentClient(), nullptr);
    }

    void mayBeDestroyedDuringTheAnnouncement()
    {
        OnceAnnounced([this] { service_.reset(); });
        service_->setClient(a_);
        QCOMPARE(log_, QByteArrayList{"announced nobody -> A, current nobody"});
        QVERIFY(!service_);
    }

    void mayBeDestroyedDuringTheChange()
    {
        OnceChanged([this] { service_.reset(); });
        service_->setClient(a_);
        QCOMPARE(log_, (QByteArrayList{"announced nobody -> A, current nobody", "changed to A, current A"}));
        QVERIFY(!service_);
    }

    void overridesAClientSetDuringTheAnnouncement()
    {
        service_->setClient(a_);
        log_.clear();
        OnceAnnounced([this] { service_->setClient(c_); });
        service_->setClient(b_);
        QCOMPARE(log_, (QByteArrayList{"announced A -> B, current nobody", "announced nobody -> C, current nobody",
                                       "changed to C, current C", "changed to B, current B"}));
        QCOMPARE(service_->currentClient(), b_.data());
    }

    void removingTheClientDuringTheAnnouncementChangesNothing()
    {
        service_->setClient(a_);
        log_.clear();
        OnceAnnounced([this] { service_->setClient(nullptr); });
        service_->setClient(b_);
        QCOMPARE(log_, (QByteArrayList{"announced A -> B, current nobody", "changed to B, current B"}));
    }

    void keepsAClientSetDuringTheChange()
    {
        OnceChanged([this] { service_->setClient(b_); });
        service_->setClient(a_);
        QCOMPARE(log_, (QByteArrayList{"announced nobody -> A, current nobody", "changed to A, current A",
                                       "announced A -> B, current nobody", "changed to B, current B"}));
        QCOMPARE(service_->currentClient(), b_.data());
    }

    void hasNoClientAfterAThrowInTheAnnouncement()
    {
        service_->setClient(a_);
        log_.clear();
        OnceAnnounced([] { throw SlotError(); });
        QVERIFY_EXCEPTION_THROWN(service_->setClient(b_), SlotError);
        QCOMPARE(log_, QByteArrayList{"announced A -> B, current nobody"});
        QCOMPARE(service_->currentClient(), nullptr);
        service_->setClient(a_);
        QCOMPARE(service_->currentClient(), a_.data());
    }

    void hasTheNewClientAfterAThrowInTheChange()
    {
        OnceChanged([] { throw SlotError(); });
        QVERIFY_EXCEPTION_THROWN(service_->setClient(a_), SlotError);
        QCOMPARE(service_->currentClient(), a_.data());
    }

protected:
    void SetUp() override
    {
        service_ = std::make_unique<ExclusiveService>(nullptr);
        clients_ = std::make_unique<QObject>();
        a_ = MakeClient(QStringLiteral("A"), clients_.get());
        b_ = MakeClient(QStringLiteral("B"), clients_.get());
        c_ = MakeClient(QStringLiteral("C"), clients_.get());
        log_.clear();
        ExclusiveService const* const service = service_.get();
        QObject::connect(service, &ExclusiveService::clientAboutToBeChanged, clients_.get(),
                         [this, service](QObject* from, QObject* to) {
                             log_ += "announced " + NameOf(from) + " -> " + NameOf(to) + ", current " +
                                     NameOf(service->currentClient());
                             RunOnce(onAnnounced_);
                         });
        QObject::connect(service, &ExclusiveService::clientChanged, clients_.get(), [this, service](QObject* client) {
            log_ += "changed to " + NameOf(client) + ", current " + NameOf(service->currentClient());
            RunOnce(onChanged_);
        });
    }

    void TearDown() override
    {
        service_.reset();
        clients_.reset();
        onAnnounced_ = nullptr;
        onChanged_ = nullptr;
    }

private:
    using Action = std::function<void()>;

    static void RunOnce(Action& action)
    {
        if (Action const pending = std::exchange(action, nullptr)) {
            pending();
        }
    }

    void OnceAnnounced(Action action) { onAnnounced_ = std::move(action); }
    void OnceChanged(Action action) { onChanged_ = std::move(action); }

    std::unique_ptr<ExclusiveService> service_;
    std::unique_ptr<QObject> clients_;
    QPointer<QObject> a_;
    QPointer<QObject> b_;
    QPointer<QObject> c_;
    QByteArrayList log_;
    Action onAnnounced_;
    Action onChanged_;
};

ZQTUTIL_TEST_MAIN(ExclusiveServiceTest)

#include "ExclusiveServiceTest.moc"
