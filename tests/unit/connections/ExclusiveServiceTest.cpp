#include <support/TestCase.h>

#include <Util/ExclusiveService.h>

#include <QtCore/QMetaMethod>
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

/// Who wants the service without being one of its client objects.
class User : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void Wanted(QObject* by);
};

namespace
{

struct CannotRun
{};

QObject* Named(char const* name, QObject* parent)
{
    auto* const object = new QObject(parent);
    object->setObjectName(QString::fromLatin1(name));
    return object;
}

QString NameOf(QObject const* object)
{
    return object ? object->objectName() : QStringLiteral("nobody");
}

} // namespace

/// A service with users A, B and C; what it signals is noted, with who is its client at the time.
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

    void hasNoClientAtFirst() { QCOMPARE(ExclusiveService(nullptr).currentClient(), nullptr); }

    void handsOver_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<QStringList>("events");
        QString const nobody = QStringLiteral("nobody");
        QString const a = QStringLiteral("A");
        QString const b = QStringLiteral("B");
        QTest::newRow("from nobody") << nobody << a
                                     << QStringList{QStringLiteral("nobody > A (nobody)"), QStringLiteral("A (A)")};
        QTest::newRow("from one to the other")
            << a << b << QStringList{QStringLiteral("A > B (nobody)"), QStringLiteral("B (B)")};
        QTest::newRow("to nobody") << a << nobody
                                   << QStringList{QStringLiteral("A > nobody (nobody)"),
                                                  QStringLiteral("nobody (nobody)")};
        QTest::newRow("to the same") << a << a << QStringList();
        QTest::newRow("from nobody to nobody") << nobody << nobody << QStringList();
    }

    void handsOver()
    {
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(QStringList, events);
        service_->setClient(UserOf(from));
        events_.clear();
        service_->setClient(UserOf(to));
        QCOMPARE(events_, events);
        QCOMPARE(service_->currentClient(), UserOf(to));
    }

    void isHandedOverByASignal()
    {
        User user;
        QVERIFY(QObject::connect(&user, SIGNAL(Wanted(QObject*)), service_.get(), SLOT(setClient(QObject*))));
        Q_EMIT user.Wanted(&user);
        QCOMPARE(service_->currentClient(), &user);
        Q_EMIT user.Wanted(nullptr);
        QCOMPARE(service_->currentClient(), nullptr);
    }

    void forgetsAClientThatIsDestroyed()
    {
        service_->setClient(a_);
        events_.clear();
        delete a_;
        QCOMPARE(service_->currentClient(), nullptr);
        service_->setClient(nullptr);
        QCOMPARE(events_, QStringList());
        service_->setClient(b_);
        QCOMPARE(events_, (QStringList{QStringLiteral("nobody > B (nobody)"), QStringLiteral("B (B)")}));
    }

    void saysNothingAtItsEnd()
    {
        service_->setClient(a_);
        events_.clear();
        service_.reset();
        QCOMPARE(events_, QStringList());
        QVERIFY(a_);
    }

    void theNewClientMayEndDuringTheAnnouncement()
    {
        service_->setClient(a_);
        events_.clear();
        OnceAnnounced([this] { delete b_; });
        service_->setClient(b_);
        QCOMPARE(events_, (QStringList{QStringLiteral("A > B (nobody)"), QStringLiteral("nobody (nobody)")}));
        QCOMPARE(service_->currentClient(), nullptr);
    }

    void theOldClientMayEndDuringTheAnnouncement()
    {
        service_->setClient(a_);
        events_.clear();
        OnceAnnounced([this] { delete a_; });
        service_->setClient(b_);
        QCOMPARE(events_, (QStringList{QStringLiteral("A > B (nobody)"), QStringLiteral("B (B)")}));
    }

    void theClientMayEndDuringTheChange()
    {
        OnceChanged([this] { delete a_; });
        service_->setClient(a_);
        QCOMPARE(events_, (QStringList{QStringLiteral("nobody > A (nobody)"), QStringLiteral("A (A)")}));
        QCOMPARE(service_->currentClient(), nullptr);
    }

    void theServiceMayEndDuringTheAnnouncement()
    {
        OnceAnnounced([this] { service_.reset(); });
        service_->setClient(a_);
        QCOMPARE(events_, QStringList{QStringLiteral("nobody > A (nobody)")});
        QVERIFY(!service_);
    }

    void theServiceMayEndDuringTheChange()
    {
        OnceChanged([this] { service_.reset(); });
        service_->setClient(a_);
        QCOMPARE(events_, (QStringList{QStringLiteral("nobody > A (nobody)"), QStringLiteral("A (A)")}));
        QVERIFY(!service_);
    }

    void aHandOverInTheAnnouncementIsOverruled()
    {
        service_->setClient(a_);
        events_.clear();
        OnceAnnounced([this] { service_->setClient(c_); });
        service_->setClient(b_);
        QCOMPARE(events_, (QStringList{QStringLiteral("A > B (nobody)"), QStringLiteral("nobody > C (nobody)"),
                                       QStringLiteral("C (C)"), QStringLiteral("B (B)")}));
        QCOMPARE(service_->currentClient(), b_.data());
    }

    void nobodyIsTheClientDuringTheAnnouncement()
    {
        service_->setClient(a_);
        events_.clear();
        OnceAnnounced([this] { service_->setClient(nullptr); });
        service_->setClient(b_);
        QCOMPARE(events_, (QStringList{QStringLiteral("A > B (nobody)"), QStringLiteral("B (B)")}));
    }

    void aHandOverInTheChangeIsTheLast()
    {
        OnceChanged([this] { service_->setClient(b_); });
        service_->setClient(a_);
        QCOMPARE(events_, (QStringList{QStringLiteral("nobody > A (nobody)"), QStringLiteral("A (A)"),
                                       QStringLiteral("A > B (nobody)"), QStringLiteral("B (B)")}));
        QCOMPARE(service_->currentClient(), b_.data());
    }

    void nobodyIsTheClientAfterAThrowInTheAnnouncement()
    {
        service_->setClient(a_);
        events_.clear();
        OnceAnnounced([] { throw CannotRun(); });
        QVERIFY_EXCEPTION_THROWN(service_->setClient(b_), CannotRun);
        QCOMPARE(events_, QStringList{QStringLiteral("A > B (nobody)")});
        QCOMPARE(service_->currentClient(), nullptr);
        service_->setClient(a_);
        QCOMPARE(service_->currentClient(), a_.data());
    }

    void theClientIsTheNewOneAfterAThrowInTheChange()
    {
        OnceChanged([] { throw CannotRun(); });
        QVERIFY_EXCEPTION_THROWN(service_->setClient(a_), CannotRun);
        QCOMPARE(service_->currentClient(), a_.data());
    }

protected:
    void SetUp() override
    {
        service_ = std::make_unique<ExclusiveService>(nullptr);
        users_ = std::make_unique<QObject>();
        a_ = Named("A", users_.get());
        b_ = Named("B", users_.get());
        c_ = Named("C", users_.get());
        events_.clear();
        ExclusiveService const* const service = service_.get();
        QObject::connect(
            service, &ExclusiveService::clientAboutToBeChanged, users_.get(),
            [this, service](QObject* from, QObject* to) {
                events_ +=
                    QStringLiteral("%1 > %2 (%3)").arg(NameOf(from), NameOf(to), NameOf(service->currentClient()));
                Act(onceAnnounced_);
            });
        QObject::connect(service, &ExclusiveService::clientChanged, users_.get(), [this, service](QObject* client) {
            events_ += QStringLiteral("%1 (%2)").arg(NameOf(client), NameOf(service->currentClient()));
            Act(onceChanged_);
        });
    }

    void TearDown() override
    {
        service_.reset();
        users_.reset();
        onceAnnounced_ = nullptr;
        onceChanged_ = nullptr;
    }

private:
    using Action = std::function<void()>;

    static void Act(Action& action)
    {
        if (Action const taken = std::exchange(action, nullptr)) {
            taken();
        }
    }

    void OnceAnnounced(Action action) { onceAnnounced_ = std::move(action); }
    void OnceChanged(Action action) { onceChanged_ = std::move(action); }

    QObject* UserOf(QString const& name) const { return users_->findChild<QObject*>(name); }

    std::unique_ptr<ExclusiveService> service_;
    std::unique_ptr<QObject> users_;
    QPointer<QObject> a_;
    QPointer<QObject> b_;
    QPointer<QObject> c_;
    QStringList events_;
    Action onceAnnounced_;
    Action onceChanged_;
};

ZQTUTIL_TEST_MAIN(ExclusiveServiceTest)

#include "ExclusiveServiceTest.moc"
