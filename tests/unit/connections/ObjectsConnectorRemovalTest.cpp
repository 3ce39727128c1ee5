// What the registry forgets: what is unregistered, and what ends.

#include <unit/connections/ConnectorTestCase.h>

#include <Util/ObjectsConnector.h>

#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <chrono>
#include <cstdlib>
#include <thread>

#include <unistd.h>

using Zelkor::Testing::Party;
using Zelkor::Util::ObjectsConnector;

namespace
{

constexpr auto Patience = std::chrono::seconds(10);
constexpr auto LastObjectVariable = "ZQTUTIL_TEST_LAST_OBJECT";

QObject* lastObject = nullptr;

/// The program that ends with an object that is destroyed when the libraries have ended.
int RegisterAnObjectThatEndsLast()
{
    lastObject = new QObject;
    ObjectsConnector::registerReceiver(QStringLiteral("volume"), lastObject, QStringLiteral("deleteLater()"));
    ObjectsConnector::registerEmitter(QStringLiteral("volume"), lastObject,
                                      QStringLiteral("objectNameChanged(QString)"));
    QObject::connect(lastObject, &QObject::destroyed, lastObject, [] {
        constexpr char text[] = {'g', 'o', 'n', 'e'};
        if (write(STDOUT_FILENO, text, sizeof text) != sizeof text) {
            std::_Exit(EXIT_FAILURE);
        }
    });
    return EXIT_SUCCESS;
}

// Runs before the libraries end; what it registers runs after them.
[[gnu::destructor]] void DestroyTheLastObjectAtTheVeryEnd()
{
    if (lastObject) {
        on_exit([](int, void* object) { delete static_cast<QObject*>(object); }, lastObject);
    }
}

} // namespace

class ObjectsConnectorRemovalTest : public Zelkor::Testing::ConnectorTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void neverDisconnectsAnObjectFromItself()
    {
        Party both("both");
        RegisterEmitter(both);
        RegisterReceiver(both);
        QVERIFY(QObject::connect(&both, SIGNAL(Changed()), &both, SLOT(Note())));
        UnregisterReceiver(both);
        RegisterReceiver(both);
        UnregisterEmitter(both);
        QCOMPARE(both.Disconnected(), QStringList());
        QCOMPARE(Heard(both), Words("both"));
    }

    void unregisteringDisconnectsAndForgets_data() { AddSides("emitter", "receiver"); }

    void unregisteringDisconnectsAndForgets()
    {
        QFETCH(bool, isEmitter);
        Party receivers[] = {{"receiver1"}, {"receiver2"}};
        Party emitters[] = {{"emitter1"}, {"emitter2"}};
        for (int i : {0, 1}) {
            RegisterReceiver(receivers[i]);
            RegisterEmitter(emitters[i]);
        }
        isEmitter ? UnregisterEmitter(emitters[0]) : UnregisterReceiver(receivers[0]);
        QStringList const all = Words("receiver1 receiver2");
        QStringList const second = Words("receiver2");
        QCOMPARE(Heard(emitters[0]), isEmitter ? QStringList() : second);
        QCOMPARE(Heard(emitters[1]), isEmitter ? all : second);

        Party newEmitter("newemitter");
        Party newReceiver("newreceiver");
        RegisterEmitter(newEmitter);
        QCOMPARE(Heard(newEmitter), isEmitter ? all : second);
        RegisterReceiver(newReceiver);
        QCOMPARE(emitters[0].Connected().size(), isEmitter ? 2 : 3);
        QCOMPARE(emitters[1].Connected().size(), 3);
    }

    void unregisteringLeavesOtherSignaturesAlone()
    {
        RegisterEmitter(*emitter_, Changed);
        RegisterEmitter(*emitter_, ValueChanged);
        RegisterReceiver(*receiver_, Note);
        UnregisterEmitter(*emitter_, ValueChanged);
        QCOMPARE(emitter_->Disconnected(), QStringList{ValueChanged});
        QCOMPARE(Heard(*emitter_), Words("receiver"));
        ExpectQtWarning(QRegularExpression(QStringLiteral("Changed\\(\\) --> Zelkor::Testing::Party::Set\\(int\\)$")));
        RegisterReceiver(*receiver_, Set);
        UnregisterReceiver(*receiver_, Set);
        QCOMPARE(Heard(*emitter_), Words("receiver"));
        Party late("late");
        RegisterEmitter(late);
        QCOMPARE(Heard(late), Words("receiver"));
    }

    void unregisteringAStrangerChangesNothing()
    {
        Party stranger("stranger");
        RegisterReceiver(*receiver_);
        RegisterEmitter(*emitter_);
        UnregisterReceiver(stranger);
        UnregisterEmitter(stranger);
        UnregisterReceiver(*emitter_);
        UnregisterEmitter(*receiver_);
        QCOMPARE(emitter_->Disconnected(), QStringList());
        QCOMPARE(Heard(*emitter_), Words("receiver"));
        Party late("late");
        RegisterEmitter(late);
        RegisterReceiver(late);
        QCOMPARE(Heard(late), Words("receiver"));
        QCOMPARE(Heard(*emitter_), Words("receiver late"));
    }

    void unregisteringAStrangerDisconnectsIt_data() { AddSides("emitter", "receiver"); }

    void unregisteringAStrangerDisconnectsIt()
    {
        QFETCH(bool, isEmitter);
        Party stranger("stranger");
        if (isEmitter) {
            RegisterReceiver(*receiver_);
            QVERIFY(connect(&stranger, SIGNAL(Changed()), &*receiver_, SLOT(Note())));
            UnregisterEmitter(stranger);
            QCOMPARE(Heard(stranger), QStringList());
        } else {
            RegisterEmitter(*emitter_);
            QVERIFY(connect(&*emitter_, SIGNAL(Changed()), &stranger, SLOT(Note())));
            UnregisterReceiver(stranger);
            QCOMPARE(Heard(*emitter_), QStringList());
        }
    }

    void registersAgainAfterUnregistering()
    {
        RegisterReceiver(*receiver_);
        RegisterEmitter(*emitter_);
        UnregisterEmitter(*emitter_);
        RegisterEmitter(*emitter_);
        QCOMPARE(Heard(*emitter_), Words("receiver"));
        UnregisterReceiver(*receiver_);
        RegisterReceiver(*receiver_);
        QCOMPARE(Heard(*emitter_), Words("receiver"));
    }

    void unregisteringOnceForgetsDuplicates_data() { AddSides("emitter", "receiver"); }

    void unregisteringOnceForgetsDuplicates()
    {
        QFETCH(bool, isEmitter);
        for (int times = 0; times < 2; ++times) {
            RegisterReceiver(*receiver_);
            RegisterEmitter(*emitter_);
        }
        isEmitter ? UnregisterEmitter(*emitter_) : UnregisterReceiver(*receiver_);
        QCOMPARE(Heard(*emitter_), QStringList());
        isEmitter ? RegisterReceiver(*receiver_) : RegisterEmitter(*emitter_);
        QCOMPARE(Heard(*emitter_), QStringList());
        QCOMPARE(emitter_->Connected().size(), 1);
    }

    void watchesForTheEndOncePerRegistration()
    {
        Party party("party");
        int const none = party.DestructionHandlers();
        RegisterReceiver(party);
        QCOMPARE(party.DestructionHandlers(), none + 1);
        RegisterReceiver(party);
        QCOMPARE(party.DestructionHandlers(), none + 2);
        UnregisterReceiver(party);
        QCOMPARE(party.DestructionHandlers(), none + 2);
        RegisterEmitter(party);
        UnregisterEmitter(party);
        QCOMPARE(party.DestructionHandlers(), none + 3);
    }

    // A successor at the same address would be taken for the object that was destroyed.
    void forgetsADestroyedReceiver()
    {
        Party survivor("survivor");
        RegisterReceiver(*receiver_);
        RegisterReceiver(*receiver_, Set);
        RegisterReceiver(*receiver_);
        RegisterReceiver(survivor);
        receiver_.reset();
        receiver_.emplace("successor");
        RegisterEmitter(*emitter_);
        QCOMPARE(emitter_->Connected(), QStringList{Changed});
        QCOMPARE(Heard(*emitter_), Words("survivor"));
    }

    void forgetsADestroyedEmitter()
    {
        Party survivor("survivor");
        RegisterEmitter(*emitter_);
        RegisterEmitter(*emitter_, ValueChanged);
        RegisterEmitter(survivor);
        ObjectsConnector::registerEmitter(QStringLiteral("balance"), &*emitter_, Changed);
        emitter_.reset();
        emitter_.emplace("successor");
        RegisterReceiver(*receiver_);
        ObjectsConnector::registerReceiver(QStringLiteral("balance"), &*receiver_, Note);
        QCOMPARE(emitter_->Connected(), QStringList());
        QCOMPARE(survivor.Connected(), QStringList{Changed});
    }

    void forgetsADestroyedObjectThatWasUnregistered()
    {
        Party survivor("survivor");
        RegisterReceiver(survivor);
        RegisterReceiver(*receiver_);
        UnregisterReceiver(*receiver_);
        receiver_.reset();
        RegisterEmitter(*emitter_);
        QCOMPARE(Heard(*emitter_), Words("survivor"));
    }

    void forgetsAnObjectBeforeLaterHandlersOfItsEnd()
    {
        RegisterReceiver(*receiver_);
        QObject::connect(&*receiver_, &QObject::destroyed, this, [this] { RegisterEmitter(*emitter_); });
        receiver_.reset(); // an attempt to connect would be warned of: what is left has no slots
        QCOMPARE(emitter_->Connected(), QStringList());
    }

    // It stays with its own thread, to which a queued call would go.
    void forgetsAnObjectThatAnotherThreadDestroys()
    {
        RegisterReceiver(*receiver_);
        std::thread([this] { receiver_.reset(); }).join();
        receiver_.emplace("successor");
        RegisterEmitter(*emitter_);
        QCOMPARE(emitter_->Connected(), QStringList());
    }

    void outlivesTheRegistryQuietly()
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QString::fromLatin1(LastObjectVariable), QStringLiteral("1"));
        environment.insert(QStringLiteral("MALLOC_PERTURB_"), QStringLiteral("165")); // nothing freed looks alive
        process.setProcessEnvironment(environment);
        process.start(QCoreApplication::applicationFilePath(), QStringList());
        QVERIFY(process.waitForFinished(static_cast<int>(std::chrono::milliseconds(Patience).count())));
        QVERIFY2(process.exitStatus() == QProcess::NormalExit, process.readAllStandardError().constData());
        QCOMPARE(process.exitCode(), 0);
        QCOMPARE(process.readAllStandardError(), QByteArray());
        QCOMPARE(process.readAllStandardOutput(), QByteArray("gone"));
    }
};

int main(int argc, char** argv)
{
    return qEnvironmentVariableIsSet(LastObjectVariable)
               ? RegisterAnObjectThatEndsLast()
               : Zelkor::Testing::RunTests<ObjectsConnectorRemovalTest>(argc, argv, false);
}

#include "ObjectsConnectorRemovalTest.moc"
