#include <support/ProgrammingError.h>
#include <support/TestCase.h>

#include <Util/ExclusiveClient.h>

#include <QtCore/QMetaMethod>
#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <cstdlib>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <type_traits>
#include <utility>

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

namespace
{

/// What happens on the stage, in words: clients A, B and C, and a guest that is no client object, share a service;
/// another service stands by.
struct Scene
{
    char const* name;
    char const* before; // steps that are not looked at
    char const* steps;
    char const* events; // all signals, in order
    char const* inUse;  // whoever is in use at the end
};

/// A scene in which somebody acts when a signal arrives for the first time.
struct Intervention
{
    char const* name;
    char const* before;
    char const* when; // the signal
    char const* act;
    char const* steps;
    char const* events;
    char const* inUse;
};

constexpr Scene scenes[] = {
    {"uses what nobody holds", "", "A use",
     "service: nobody > A, B otherClientAppeared, C otherClientAppeared, service: A, A acquired", "A"},
    {"uses what another holds", "B use", "A use",
     "service: B > A, B released, B intercepted, C otherClientAppeared, service: A, A acquired", "A"},
    {"uses what it holds", "A use", "A use", "", "A"},
    {"uses what it held", "A use, A finalize", "A use",
     "service: nobody > A, B otherClientAppeared, C otherClientAppeared, service: A, A acquired", "A"},
    {"uses what the guest holds", "guest takes", "A use",
     "service: guest > A, B otherClientAppeared, C otherClientAppeared, service: A, A acquired", "A"},
    {"is taken over", "A use", "B use",
     "service: A > B, A released, A intercepted, C otherClientAppeared, service: B, B acquired", "B"},
    {"is taken over by the guest", "A use", "guest takes",
     "service: A > guest, A released, A intercepted, B otherClientAppeared, C otherClientAppeared, service: guest", ""},
    {"sees a hand-over of others", "C use", "B use",
     "service: C > B, A otherClientAppeared, C released, C intercepted, service: B, B acquired", "B"},
    {"finalizes what it holds", "A use", "A finalize", "service: A > nobody, service: nobody, A released, A finished",
     ""},
    {"finalizes what another holds", "B use", "A finalize", "", "B"},
    {"finalizes what the guest holds", "guest takes", "A finalize", "", ""},
    {"finalizes what nobody holds", "", "A finalize", "", ""},
    {"finalizes twice", "A use, A finalize", "A finalize", "", ""},
    {"breaks what it holds", "A use", "A breakAll", "service: A > nobody, A released, A intercepted, service: nobody",
     ""},
    {"breaks what another holds", "B use", "A breakAll",
     "service: B > nobody, B released, B intercepted, service: nobody", ""},
    {"breaks what the guest holds", "guest takes", "A breakAll", "service: guest > nobody, service: nobody", ""},
    {"breaks what nobody holds", "", "A breakAll", "", ""},
    {"is dropped by the service", "A use", "service drops",
     "service: A > nobody, A released, A intercepted, service: nobody", ""},
    {"leaves while it holds", "A use", "A leaves", "service: A > nobody, service: nobody, A released, A finished", ""},
    {"moves while it holds", "A use", "A moves", "service: A > nobody, service: nobody, A released, A finished", ""},
    {"is bound again while it holds", "A use", "A stays",
     "service: A > nobody, service: nobody, A released, A finished", ""},
    {"ends while it holds", "A use", "A ends", "service: A > nobody, service: nobody, A released, A finished", ""},
    {"leaves while it is idle", "B use", "A leaves", "", "B"},
    {"moves while it is idle", "B use", "A moves", "", "B"},
    {"is bound again while it is idle", "B use", "A stays", "", "B"},
    {"ends while it is idle", "B use", "A ends", "", "B"},
    {"uses, bound twice", "A stays", "A use",
     "service: nobody > A, B otherClientAppeared, C otherClientAppeared, service: A, A acquired", "A"},
    {"does not hear the service it left", "A leaves", "B use, C use",
     "service: nobody > B, C otherClientAppeared, service: B, B acquired, "
     "service: B > C, B released, B intercepted, service: C, C acquired",
     "C"},
    {"hears the service it moved to only", "A moves", "B use, A use, A finalize",
     "service: nobody > B, C otherClientAppeared, service: B, B acquired, "
     "other: nobody > A, other: A, A acquired, other: A > nobody, other: nobody, A released, A finished",
     "B"},
    {"holds one while another holds the other", "A moves, A use", "B use",
     "service: nobody > B, C otherClientAppeared, service: B, B acquired", "A B"},
    {"loses its service", "A use", "service ends", "", ""},
    {"leaves a service that has ended", "A use, service ends", "A leaves", "", ""},
    {"moves from a service that has ended", "A use, service ends", "A moves, A use",
     "other: nobody > A, other: A, A acquired", "A"},
    {"ends after its service", "A use, service ends", "A ends", "", ""},
};

constexpr Intervention interventions[] = {
    {"ends when acquired", "", "A acquired", "A ends", "A use",
     "service: nobody > A, B otherClientAppeared, C otherClientAppeared, service: A, A acquired, "
     "service: A > nobody, service: nobody, A released, A finished",
     ""},
    {"ends when released by another", "A use", "A released", "A ends", "B use",
     "service: A > B, A released, C otherClientAppeared, service: B, B acquired", "B"},
    {"ends when intercepted", "A use", "A intercepted", "A ends", "B use",
     "service: A > B, A released, A intercepted, C otherClientAppeared, service: B, B acquired", "B"},
    {"ends when released by itself", "A use", "A released", "A ends", "A finalize",
     "service: A > nobody, service: nobody, A released", ""},
    {"ends when finished", "A use", "A finished", "A ends", "A finalize",
     "service: A > nobody, service: nobody, A released, A finished", ""},
    {"ends when finished by a move", "A use", "A finished", "A ends", "A moves",
     "service: A > nobody, service: nobody, A released, A finished", ""},
    {"ends when another appears", "", "A otherClientAppeared", "A ends", "B use",
     "service: nobody > B, A otherClientAppeared, C otherClientAppeared, service: B, B acquired", "B"},
    {"ends when the service announces its own release", "A use", "service: A > nobody", "A ends", "A finalize",
     "service: A > nobody, service: nobody", ""},
    {"ends when the service announces another", "A use", "service: A > B", "A ends", "B use",
     "service: A > B, C otherClientAppeared, service: B, B acquired", "B"},
    {"the new holder ends when another is intercepted", "A use", "A intercepted", "B ends", "B use",
     "service: A > B, A released, A intercepted, C otherClientAppeared, service: nobody", ""},

    {"the service ends when acquired", "", "A acquired", "service ends", "A use",
     "service: nobody > A, B otherClientAppeared, C otherClientAppeared, service: A, A acquired", ""},
    {"the service ends when released by another", "A use", "A released", "service ends", "B use",
     "service: A > B, A released, A intercepted", ""},
    {"the service ends when intercepted", "A use", "A intercepted", "service ends", "B use",
     "service: A > B, A released, A intercepted", ""},
    {"the service ends when released by itself", "A use", "A released", "service ends", "A finalize",
     "service: A > nobody, service: nobody, A released, A finished", ""},
    {"the service ends when finished", "A use", "A finished", "service ends", "A finalize",
     "service: A > nobody, service: nobody, A released, A finished", ""},
    {"the service ends when finished by a move", "A use", "A finished", "service ends", "A moves, A use",
     "service: A > nobody, service: nobody, A released, A finished, other: nobody > A, other: A, A acquired", "A"},
    {"the service ends when another appears", "", "A otherClientAppeared", "service ends", "B use",
     "service: nobody > B, A otherClientAppeared", ""},
    {"the service ends when it announces the release", "A use", "service: A > nobody", "service ends", "A finalize",
     "service: A > nobody, A released, A finished", ""},

    {"moves when acquired", "", "A acquired", "A moves", "A use, A use",
     "service: nobody > A, B otherClientAppeared, C otherClientAppeared, service: A, A acquired, "
     "service: A > nobody, service: nobody, A released, A finished, other: nobody > A, other: A, A acquired",
     "A"},
    {"leaves when released by another", "A use", "A released", "A leaves", "B use, C use",
     "service: A > B, A released, A intercepted, C otherClientAppeared, service: B, B acquired, "
     "service: B > C, B released, B intercepted, service: C, C acquired",
     "C"},
    {"moves when intercepted", "A use", "A intercepted", "A moves", "B use, A use",
     "service: A > B, A released, A intercepted, C otherClientAppeared, service: B, B acquired, "
     "other: nobody > A, other: A, A acquired",
     "A B"},
    {"leaves when another appears", "", "A otherClientAppeared", "A leaves", "B use, C use",
     "service: nobody > B, A otherClientAppeared, C otherClientAppeared, service: B, B acquired, "
     "service: B > C, B released, B intercepted, service: C, C acquired",
     "C"},
    {"moves when finished", "A use", "A finished", "A moves", "A finalize, A use",
     "service: A > nobody, service: nobody, A released, A finished, other: nobody > A, other: A, A acquired", "A"},
    {"moves when finished by leaving, which prevails", "A use", "A finished", "A moves", "A leaves, guest takes other",
     "service: A > nobody, service: nobody, A released, A finished, other: nobody > guest, other: guest", ""},
    {"stays when finished by moving, which prevails", "A use", "A finished", "A stays", "A moves, B use, A use",
     "service: A > nobody, service: nobody, A released, A finished, "
     "service: nobody > B, C otherClientAppeared, service: B, B acquired, other: nobody > A, other: A, A acquired",
     "A B"},

    {"hands over when acquired", "", "A acquired", "B use", "A use",
     "service: nobody > A, B otherClientAppeared, C otherClientAppeared, service: A, A acquired, "
     "service: A > B, A released, A intercepted, C otherClientAppeared, service: B, B acquired",
     "B"},
    {"finalizes when acquired", "", "A acquired", "A finalize", "A use",
     "service: nobody > A, B otherClientAppeared, C otherClientAppeared, service: A, A acquired, "
     "service: A > nobody, service: nobody, A released, A finished",
     ""},
    {"breaks when acquired", "", "A acquired", "A breakAll", "A use",
     "service: nobody > A, B otherClientAppeared, C otherClientAppeared, service: A, A acquired, "
     "service: A > nobody, A released, A intercepted, service: nobody",
     ""},
    {"uses again when finished", "A use", "A finished", "A use", "A finalize",
     "service: A > nobody, service: nobody, A released, A finished, "
     "service: nobody > A, B otherClientAppeared, C otherClientAppeared, service: A, A acquired",
     "A"},
    {"takes back when intercepted, which the hand-over overrules", "A use", "A intercepted", "A use", "B use",
     "service: A > B, A released, A intercepted, "
     "service: nobody > A, B otherClientAppeared, C otherClientAppeared, service: A, A acquired, "
     "C otherClientAppeared, service: B, B acquired",
     "B"},

    {"hears nothing while it lets go", "A use", "A finished", "B use", "A finalize",
     "service: A > nobody, service: nobody, A released, A finished, "
     "service: nobody > B, C otherClientAppeared, service: B, B acquired",
     "B"},
    {"hears nothing while it leaves", "A use", "A finished", "A hears", "A leaves",
     "service: A > nobody, service: nobody, A released, A finished", ""},
    {"hears nothing while it is intercepted", "A use", "A intercepted", "A hears", "B use",
     "service: A > B, A released, A intercepted, C otherClientAppeared, service: B, B acquired", "B"},
    {"hears nothing while another appears", "", "A otherClientAppeared", "A hears", "B use",
     "service: nobody > B, A otherClientAppeared, C otherClientAppeared, service: B, B acquired", "B"},
    {"hears of others when acquired", "", "A acquired", "A hears", "A use",
     "service: nobody > A, B otherClientAppeared, C otherClientAppeared, service: A, A acquired, A otherClientAppeared",
     "A"},
};

constexpr auto DyingClientVariable = "ZQTUTIL_TEST_DYING_CLIENT";
constexpr int Terminated = 42;

struct CannotRun
{};

QString NameOf(QObject const* object)
{
    return object ? object->objectName() : QStringLiteral("nobody");
}

QStringList Split(char const* list)
{
    return QString::fromLatin1(list).split(QStringLiteral(", "), Qt::SkipEmptyParts);
}

} // namespace

Q_DECLARE_METATYPE(Scene)
Q_DECLARE_METATYPE(Intervention)

class ExclusiveClientTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
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
        client_[QStringLiteral("A")]->setParent(service_.get());
        DoAll("A use");
        events_.clear();
        DoAll("service ends");
        QVERIFY(!client_[QStringLiteral("A")]);
        QCOMPARE(events_, QStringList());
    }

    void tellsWhatHappens_data()
    {
        QTest::addColumn<Scene>("scene");
        for (Scene const& scene : scenes) {
            QTest::newRow(scene.name) << scene;
        }
    }

    void tellsWhatHappens()
    {
        QFETCH(Scene, scene);
        DoAll(scene.before);
        events_.clear();
        DoAll(scene.steps);
        QCOMPARE(events_, Split(scene.events));
        QCOMPARE(InUse(), QString::fromLatin1(scene.inUse));
    }

    void standsInterventions_data()
    {
        QTest::addColumn<Intervention>("intervention");
        for (Intervention const& intervention : interventions) {
            QTest::newRow(intervention.name) << intervention;
        }
    }

    void standsInterventions()
    {
        QFETCH(Intervention, intervention);
        DoAll(intervention.before);
        events_.clear();
        InterveneOnce(intervention.when, intervention.act);
        DoAll(intervention.steps);
        QCOMPARE(events_, Split(intervention.events));
        QCOMPARE(InUse(), QString::fromLatin1(intervention.inUse));
        QVERIFY(when_.isEmpty());
    }

    void tellsWhoIsInUseInsideTheSignals_data()
    {
        QTest::addColumn<QString>("when");
        QTest::addColumn<QString>("step");
        QTest::addColumn<QString>("inUse");
        QTest::newRow("intercepted") << QStringLiteral("A intercepted") << QStringLiteral("B use") << QString();
        QTest::newRow("released by another") << QStringLiteral("A released") << QStringLiteral("B use") << QString();
        QTest::newRow("another appears") << QStringLiteral("C otherClientAppeared") << QStringLiteral("B use")
                                         << QString();
        QTest::newRow("acquired") << QStringLiteral("B acquired") << QStringLiteral("B use") << QStringLiteral("B");
        QTest::newRow("released by itself")
            << QStringLiteral("A released") << QStringLiteral("A finalize") << QString();
        QTest::newRow("finished") << QStringLiteral("A finished") << QStringLiteral("A finalize") << QString();
    }

    void tellsWhoIsInUseInsideTheSignals()
    {
        QFETCH(QString, when);
        QFETCH(QString, step);
        QFETCH(QString, inUse);
        Do(QStringLiteral("A use"));
        QString seen = QStringLiteral("nothing");
        when_ = when;
        act_ = [this, &seen] { seen = InUse(); };
        Do(step);
        QCOMPARE(seen, inUse);
    }

    void hearsOfHandOvers_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<QStringList>("events");
        QString const nobody = QStringLiteral("nobody");
        QString const a = QStringLiteral("A");
        QString const b = QStringLiteral("B");
        QString const guest = QStringLiteral("guest");
        QStringList const intercepted{QStringLiteral("A released"), QStringLiteral("A intercepted")};
        QStringList const otherAppeared{QStringLiteral("A otherClientAppeared")};
        QTest::newRow("from it to another") << a << b << intercepted;
        QTest::newRow("from it to nobody") << a << nobody << intercepted;
        QTest::newRow("from it to itself") << a << a << QStringList();
        QTest::newRow("from another to it") << b << a << QStringList();
        QTest::newRow("from nobody to it") << nobody << a << QStringList();
        QTest::newRow("from another to a third") << b << guest << otherAppeared;
        QTest::newRow("from nobody to another") << nobody << b << otherAppeared;
        QTest::newRow("from another to nobody") << b << nobody << QStringList();
        QTest::newRow("from nobody to nobody") << nobody << nobody << QStringList();
    }

    // Whatever the service's client is.
    void hearsOfHandOvers()
    {
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(QStringList, events);
        Hear(*client_[QStringLiteral("A")], ObjectOf(from), ObjectOf(to));
        QCOMPARE(events_, events);
        Hear(*client_[QStringLiteral("A")], ObjectOf(from), ObjectOf(to));
        QCOMPARE(events_, events + events);
    }

    void isToldWhatToDoBySignals()
    {
        QObject remote;
        ExclusiveClient* const client = client_[QStringLiteral("A")];
        QVERIFY(QObject::connect(&remote, SIGNAL(objectNameChanged(QString)), client, SLOT(use())));
        remote.setObjectName(QStringLiteral("use"));
        QVERIFY(client->isInUse());
        QVERIFY(QObject::disconnect(&remote, nullptr, client, nullptr));
        QVERIFY(QObject::connect(&remote, SIGNAL(objectNameChanged(QString)), client, SLOT(finalize())));
        remote.setObjectName(QStringLiteral("finalize"));
        QVERIFY(!client->isInUse());
        client_[QStringLiteral("B")]->use();
        QVERIFY(QObject::connect(&remote, SIGNAL(objectNameChanged(QString)), client, SLOT(breakAll())));
        remote.setObjectName(QStringLiteral("breakAll"));
        QCOMPARE(service_->currentClient(), nullptr);
    }

    void leavingCutsEveryConnectionFromTheServiceToTheClient()
    {
        ExclusiveClient* const client = client_[QStringLiteral("A")];
        int ofClient = 0;
        int ofOthers = 0;
        QObject::connect(service_.get(), &ExclusiveService::clientChanged, client, [&ofClient] { ++ofClient; });
        QObject::connect(service_.get(), &ExclusiveService::clientChanged, this, [&ofOthers] { ++ofOthers; });
        DoAll("A use");
        QCOMPARE(ofClient, 1);
        QCOMPARE(ofOthers, 1);
        DoAll("A leaves"); // cut before the service's change
        QCOMPARE(ofClient, 1);
        QCOMPARE(ofOthers, 2);
    }

    // A successor at the same address would finish in the place of the one that is gone.
    void doesNotFinishWhenItEndsMeanwhile()
    {
        std::optional<ExclusiveClient> client(std::in_place, service_.get(), nullptr);
        int timesFinished = 0;
        client->setObjectName(QStringLiteral("D"));
        client->use();
        when_ = QStringLiteral("service: D > nobody");
        act_ = [this, &client, &timesFinished] {
            client.reset();
            client.emplace(service_.get(), nullptr);
            QObject::connect(&*client, &ExclusiveClient::finished, this, [&timesFinished] { ++timesFinished; });
        };
        client->finalize();
        QVERIFY(when_.isEmpty());
        QCOMPARE(timesFinished, 0);
    }

    // A service never keeps a client that has left it, which might end unseen.
    void leavesWhatASlotBoundMeanwhileToo()
    {
        ExclusiveService backup(nullptr);
        ExclusiveClient client(service_.get(), nullptr);
        client.setObjectName(QStringLiteral("D"));
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

    void leavesWhatASlotUsesAgainMeanwhileToo()
    {
        ExclusiveService other(nullptr);
        ExclusiveClient client(service_.get(), nullptr);
        client.setObjectName(QStringLiteral("D"));
        QObject::connect(&client, &ExclusiveClient::finished, &client, &ExclusiveClient::use);
        client.use();
        client.setService(&other);
        QCOMPARE(service_->currentClient(), nullptr);
        client.use();
        QCOMPARE(other.currentClient(), &client);
        QObject::disconnect(&client, &ExclusiveClient::finished, nullptr, nullptr);
    }

    void bindsNothingWhenTheNewServiceEndsMeanwhile()
    {
        DoAll("A use");
        InterveneOnce("A finished", "other ends");
        DoAll("A moves");
        QVERIFY(!client_[QStringLiteral("A")]->isInUse());
        QVERIFY_EXCEPTION_THROWN(DoAll("A use"), std::logic_error);
    }

    void reactsAgainAfterAThrow_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("when");
        QTest::addColumn<QString>("step");
        QString const none;
        QString const aUse = QStringLiteral("A use");
        QString const bUse = QStringLiteral("B use");
        QString const finalize = QStringLiteral("A finalize");
        QString const leaves = QStringLiteral("A leaves");
        QTest::newRow("intercepted") << aUse << QStringLiteral("A intercepted") << bUse;
        QTest::newRow("released by another") << aUse << QStringLiteral("A released") << bUse;
        QTest::newRow("another appears") << none << QStringLiteral("A otherClientAppeared") << bUse;
        QTest::newRow("finished") << aUse << QStringLiteral("A finished") << finalize;
        QTest::newRow("released by itself") << aUse << QStringLiteral("A released") << finalize;
        QTest::newRow("announcement of its release") << aUse << QStringLiteral("service: A > nobody") << finalize;
        QTest::newRow("change by its release") << aUse << QStringLiteral("service: nobody") << finalize;
        QTest::newRow("finished by leaving") << aUse << QStringLiteral("A finished") << leaves;
        QTest::newRow("announcement of its leaving") << aUse << QStringLiteral("service: A > nobody") << leaves;
        QTest::newRow("acquired") << none << QStringLiteral("A acquired") << aUse;
    }

    void reactsAgainAfterAThrow()
    {
        QFETCH(QString, before);
        QFETCH(QString, when);
        QFETCH(QString, step);
        if (!before.isEmpty()) {
            Do(before);
        }
        when_ = when;
        act_ = [] { throw CannotRun(); };
        QVERIFY_EXCEPTION_THROWN(Do(step), CannotRun);
        DoAll("A stays, service drops");
        events_.clear();
        DoAll("A use, B use, C use");
        QCOMPARE(events_.filter(QStringLiteral("A ")).join(QStringLiteral(", ")),
                 QStringLiteral("A acquired, service: A > B, A released, A intercepted, A otherClientAppeared"));
    }

    void keepsTheServiceThatItCouldNotLeave()
    {
        DoAll("A use");
        when_ = QStringLiteral("A finished");
        act_ = [] { throw CannotRun(); };
        QVERIFY_EXCEPTION_THROWN(Do(QStringLiteral("A moves")), CannotRun);
        ExclusiveClient* const client = client_[QStringLiteral("A")];
        QVERIFY(!client->isInUse());
        events_.clear();
        DoAll("A use");
        QVERIFY(client->isInUse());
        QCOMPARE(service_->currentClient(), client);
        QVERIFY(!events_.contains(QStringLiteral("A acquired")));
    }

    void aThrowAtItsEndEndsTheProcess()
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QString::fromLatin1(DyingClientVariable), QStringLiteral("1"));
        process.setProcessEnvironment(environment);
        process.start(QCoreApplication::applicationFilePath(), QStringList());
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), Terminated);
    }

    void isNotInUseWithoutService()
    {
        QVERIFY(!ExclusiveClient(nullptr, nullptr).isInUse());
        DoAll("A use, service ends");
        QVERIFY(!client_[QStringLiteral("A")]->isInUse());
    }

    void throwsWithoutService_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("verb");
        for (char const* const verb : {"use", "finalize", "breakAll"}) {
            for (char const* const before : {"", "A leaves", "service ends", "A use, service ends"}) {
                QTest::addRow("%s after: %s", verb, before) << QString::fromLatin1(before) << QString::fromLatin1(verb);
            }
        }
    }

    void throwsWithoutService()
    {
        QFETCH(QString, before);
        QFETCH(QString, verb);
        ExclusiveClient unbound(nullptr, nullptr);
        unbound.setObjectName(QStringLiteral("D"));
        client_[QStringLiteral("D")] = &unbound;
        DoAll(before.toLatin1().constData());
        QString const who = before.isEmpty() ? QStringLiteral("D ") : QStringLiteral("A ");
        auto const error = Zelkor::Testing::CatchProgrammingError<std::logic_error>([&] { Do(who + verb); });
        QCOMPARE(error.message, QStringLiteral("ExclusiveClient use without service!"));
        QVERIFY2(error.callStack.contains(QStringLiteral("ExclusiveClient::") + verb), qPrintable(error.callStack));
        QCOMPARE(error.file, QStringLiteral("Util/ExclusiveClient.cpp"));
        QVERIFY2(error.function.contains(QStringLiteral("ExclusiveClient::")), qPrintable(error.function));
        QVERIFY(error.line > 0);
    }

protected:
    void SetUp() override
    {
        service_ = MakeService(QStringLiteral("service"));
        other_ = MakeService(QStringLiteral("other"));
        guest_ = std::make_unique<QObject>();
        guest_->setObjectName(QStringLiteral("guest"));
        for (QString const& name : {QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")}) {
            client_[name] = MakeClient(name);
        }
        events_.clear();
    }

    void TearDown() override
    {
        when_.clear();
        for (auto const& [name, client] : client_) {
            delete client;
        }
        client_.clear();
        guest_.reset();
        service_.reset();
        other_.reset();
    }

private:
    std::unique_ptr<ExclusiveService> MakeService(QString const& name)
    {
        auto service = std::make_unique<ExclusiveService>(nullptr);
        QObject::connect(service.get(), &ExclusiveService::clientAboutToBeChanged, this,
                         [this, name](QObject* from, QObject* to) {
                             Tell(QStringLiteral("%1: %2 > %3").arg(name, NameOf(from), NameOf(to)));
                         });
        QObject::connect(service.get(), &ExclusiveService::clientChanged, this,
                         [this, name](QObject* client) { Tell(QStringLiteral("%1: %2").arg(name, NameOf(client))); });
        return service;
    }

    ExclusiveClient* MakeClient(QString const& name)
    {
        auto* const client = new ExclusiveClient(service_.get(), nullptr);
        client->setObjectName(name);
        // released() last: that it comes first is the client's doing.
        using Signal = void (ExclusiveClient::*)();
        std::pair<Signal, char const*> const signalNames[] = {
            {&ExclusiveClient::finished, "finished"}, {&ExclusiveClient::intercepted, "intercepted"},
            {&ExclusiveClient::acquired, "acquired"}, {&ExclusiveClient::otherClientAppeared, "otherClientAppeared"},
            {&ExclusiveClient::released, "released"},
        };
        for (auto const& [signal, signalName] : signalNames) {
            QString const event = name + QLatin1Char(' ') + QLatin1String(signalName);
            QObject::connect(client, signal, this, [this, event] { Tell(event); });
        }
        return client;
    }

    void Tell(QString const& event)
    {
        events_ += event;
        if (event == when_) {
            when_.clear();
            act_();
        }
    }

    void InterveneOnce(char const* when, char const* act)
    {
        when_ = QString::fromLatin1(when);
        act_ = [this, act] { DoAll(act); };
    }

    void DoAll(char const* steps)
    {
        for (QString const& step : Split(steps)) {
            Do(step);
        }
    }

    void Do(QString const& step)
    {
        static std::map<QString, void (*)(ExclusiveClientTest&)> const ofServices{
            {QStringLiteral("guest takes"), [](auto& test) { test.service_->setClient(test.guest_.get()); }},
            {QStringLiteral("guest takes other"), [](auto& test) { test.other_->setClient(test.guest_.get()); }},
            {QStringLiteral("service drops"), [](auto& test) { test.service_->setClient(nullptr); }},
            {QStringLiteral("service ends"), [](auto& test) { test.service_.reset(); }},
            {QStringLiteral("other ends"), [](auto& test) { test.other_.reset(); }},
        };
        static std::map<QString, void (*)(ExclusiveClientTest&, ExclusiveClient*)> const ofClients{
            {QStringLiteral("use"), [](auto&, auto* client) { client->use(); }},
            {QStringLiteral("finalize"), [](auto&, auto* client) { client->finalize(); }},
            {QStringLiteral("breakAll"), [](auto&, auto* client) { client->breakAll(); }},
            {QStringLiteral("leaves"), [](auto&, auto* client) { client->setService(nullptr); }},
            {QStringLiteral("moves"), [](auto& test, auto* client) { client->setService(test.other_.get()); }},
            {QStringLiteral("stays"), [](auto& test, auto* client) { client->setService(test.service_.get()); }},
            {QStringLiteral("ends"), [](auto&, auto* client) { delete client; }},
            {QStringLiteral("hears"), [](auto& test, auto* client) { Hear(*client, nullptr, test.guest_.get()); }},
        };
        auto const ofService = ofServices.find(step);
        if (ofService != ofServices.end()) {
            ofService->second(*this);
            return;
        }
        ofClients.at(step.section(QLatin1Char(' '), 1))(*this, client_.at(step.section(QLatin1Char(' '), 0, 0)));
    }

    static void Hear(ExclusiveClient& client, QObject* from, QObject* to)
    {
        QVERIFY(
            QMetaObject::invokeMethod(&client, "onClientAboutToBeChanged", Q_ARG(QObject*, from), Q_ARG(QObject*, to)));
    }

    QObject* ObjectOf(QString const& name) const
    {
        auto const found = client_.find(name);
        if (found != client_.end()) {
            return found->second;
        }
        return name == guest_->objectName() ? guest_.get() : nullptr;
    }

    QString InUse() const
    {
        QStringList names;
        for (auto const& [name, client] : client_) {
            if (client && client->isInUse()) {
                names += name;
            }
        }
        return names.join(QLatin1Char(' '));
    }

    std::unique_ptr<ExclusiveService> service_;
    std::unique_ptr<ExclusiveService> other_;
    std::unique_ptr<QObject> guest_;
    std::map<QString, QPointer<ExclusiveClient>> client_;
    QStringList events_;
    QString when_;
    std::function<void()> act_;
};

namespace
{

/// The program in which a slot throws when a client ends.
int EndAClientThatThrows()
{
    std::set_terminate([] { std::_Exit(Terminated); });
    ExclusiveService service(nullptr);
    try {
        ExclusiveClient client(&service, nullptr);
        QObject::connect(&client, &ExclusiveClient::finished, &service, [] { throw CannotRun(); });
        client.use();
    } catch (CannotRun const&) {
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv)
{
    return qEnvironmentVariableIsSet(DyingClientVariable)
               ? EndAClientThatThrows()
               : Zelkor::Testing::RunTests<ExclusiveClientTest>(argc, argv, false);
}

#include "ExclusiveClientTest.moc"
