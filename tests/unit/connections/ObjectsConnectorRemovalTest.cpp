// Tests that ObjectsConnector removes an object when the object is unregistered or destroyed.

#include <support/Timeouts.h>
#include <support/processes/ChildMain.h>
#include <unit/connections/ConnectorTestCase.h>

#include <Util/ObjectsConnector.h>

#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <cstdlib>
#include <thread>

#include <unistd.h>

using namespace Zelkor::Testing;
using Zelkor::Util::ObjectsConnector;

namespace
{

QObject* lastObject = nullptr;

/// Creates lastObject and registers it. At exit, lastObject is destroyed after the static objects of all libraries.
void RegisterObjectDestroyedLast()
{
    lastObject = new QObject;
    ObjectsConnector::registerReceiver(QStringLiteral("volume"), lastObject, QStringLiteral("deleteLater()"));
    ObjectsConnector::registerEmitter(QStringLiteral("volume"), lastObject,
                                      QStringLiteral("objectNameChanged(QString)"));
    QObject::connect(lastObject, &QObject::destroyed, lastObject, [] {
        constexpr char text[] = {'d', 'e', 's', 't', 'r', 'o', 'y', 'e', 'd'};
        if (write(STDOUT_FILENO, text, sizeof text) != sizeof text) {
            std::_Exit(EXIT_FAILURE);
        }
    });
}

// At exit, this function runs before the destructors of the libraries' static objects. It registers an exit handler,
// which runs after these destructors and deletes lastObject.
[[gnu::destructor]] void DestroyLastObjectAtExit()
{
    if (lastObject) {
        on_exit([](int, void* object) { delete static_cast<QObject*>(object); }, lastObject);
    }
}

constexpr ChildMain childMains[] = {{"object destroyed last", RegisterObjectDestroyedLast}};

} // namespace

class ObjectsConnectorRemovalTest : public ConnectorTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void neverDisconnectsAnObjectFromItself()
    {
        TestObject both(log_, "both");
        RegisterEmitter(both);
        RegisterReceiver(both);
        QVERIFY(QObject::connect(&both, SIGNAL(Changed()), &both, SLOT(Receive())));
        UnregisterReceiver(both);
        RegisterReceiver(both);
        UnregisterEmitter(both);
        QCOMPARE(both.DisconnectedSignals(), QStringList());
        QCOMPARE(EmitChanged(both), QByteArrayList{"both"});
    }

    void unregisteringDisconnectsAndRemovesTheEntry_data() { AddEmitterAndReceiverRows(); }

    void unregisteringDisconnectsAndRemovesTheEntry()
    {
        QFETCH(bool, isEmitter);
        TestObject receivers[] = {{log_, "receiver1"}, {log_, "receiver2"}};
        TestObject emitters[] = {{log_, "emitter1"}, {log_, "emitter2"}};
        for (int i : {0, 1}) {
            RegisterReceiver(receivers[i]);
            RegisterEmitter(emitters[i]);
        }
        isEmitter ? UnregisterEmitter(emitters[0]) : UnregisterReceiver(receivers[0]);
        QByteArrayList const all{"receiver1", "receiver2"};
        QByteArrayList const second{"receiver2"};
        QCOMPARE(EmitChanged(emitters[0]), isEmitter ? QByteArrayList() : second);
        QCOMPARE(EmitChanged(emitters[1]), isEmitter ? all : second);

        TestObject newEmitter(log_, "new emitter");
        TestObject newReceiver(log_, "new receiver");
        RegisterEmitter(newEmitter);
        QCOMPARE(EmitChanged(newEmitter), isEmitter ? all : second);
        RegisterReceiver(newReceiver);
        QCOMPARE(emitters[0].ConnectedSignals().size(), isEmitter ? 2 : 3);
        QCOMPARE(emitters[1].ConnectedSignals().size(), 3);
    }

    void unregisteringKeepsOtherSignatures()
    {
        RegisterEmitter(*emitter_, ChangedSignal);
        RegisterEmitter(*emitter_, ValueChangedSignal);
        RegisterReceiver(*receiver_, ReceiveSlot);
        UnregisterEmitter(*emitter_, ValueChangedSignal);
        QCOMPARE(emitter_->DisconnectedSignals(), QStringList{ValueChangedSignal});
        QCOMPARE(EmitChanged(*emitter_), QByteArrayList{"receiver"});
        ExpectQtWarning(QRegularExpression(
            QStringLiteral("Changed\\(\\) --> Zelkor::Testing::TestObject::ReceiveValue\\(int\\)$")));
        RegisterReceiver(*receiver_, ReceiveValueSlot);
        UnregisterReceiver(*receiver_, ReceiveValueSlot);
        QCOMPARE(EmitChanged(*emitter_), QByteArrayList{"receiver"});
        TestObject late(log_, "late");
        RegisterEmitter(late);
        QCOMPARE(EmitChanged(late), QByteArrayList{"receiver"});
    }

    void unregisteringAnUnknownObjectChangesNothing()
    {
        TestObject unknown(log_, "unknown");
        RegisterReceiver(*receiver_);
        RegisterEmitter(*emitter_);
        UnregisterReceiver(unknown);
        UnregisterEmitter(unknown);
        UnregisterReceiver(*emitter_);
        UnregisterEmitter(*receiver_);
        QCOMPARE(emitter_->DisconnectedSignals(), QStringList());
        QCOMPARE(EmitChanged(*emitter_), QByteArrayList{"receiver"});
        TestObject late(log_, "late");
        RegisterEmitter(late);
        RegisterReceiver(late);
        QCOMPARE(EmitChanged(late), QByteArrayList{"receiver"});
        QCOMPARE(EmitChanged(*emitter_), (QByteArrayList{"receiver", "late"}));
    }

    void unregisteringAnUnknownObjectDisconnectsIt_data() { AddEmitterAndReceiverRows(); }

    void unregisteringAnUnknownObjectDisconnectsIt()
    {
        QFETCH(bool, isEmitter);
        TestObject unknown(log_, "unknown");
        if (isEmitter) {
            RegisterReceiver(*receiver_);
            QVERIFY(connect(&unknown, SIGNAL(Changed()), &*receiver_, SLOT(Receive())));
            UnregisterEmitter(unknown);
            QCOMPARE(EmitChanged(unknown), QByteArrayList());
        } else {
            RegisterEmitter(*emitter_);
            QVERIFY(connect(&*emitter_, SIGNAL(Changed()), &unknown, SLOT(Receive())));
            UnregisterReceiver(unknown);
            QCOMPARE(EmitChanged(*emitter_), QByteArrayList());
        }
    }

    void connectsAgainAfterUnregistering()
    {
        RegisterReceiver(*receiver_);
        RegisterEmitter(*emitter_);
        UnregisterEmitter(*emitter_);
        RegisterEmitter(*emitter_);
        QCOMPARE(EmitChanged(*emitter_), QByteArrayList{"receiver"});
        UnregisterReceiver(*receiver_);
        RegisterReceiver(*receiver_);
        QCOMPARE(EmitChanged(*emitter_), QByteArrayList{"receiver"});
    }

    void unregisteringRemovesDuplicateEntries_data() { AddEmitterAndReceiverRows(); }

    void unregisteringRemovesDuplicateEntries()
    {
        QFETCH(bool, isEmitter);
        for (int times = 0; times < 2; ++times) {
            RegisterReceiver(*receiver_);
            RegisterEmitter(*emitter_);
        }
        isEmitter ? UnregisterEmitter(*emitter_) : UnregisterReceiver(*receiver_);
        QCOMPARE(EmitChanged(*emitter_), QByteArrayList());
        isEmitter ? RegisterReceiver(*receiver_) : RegisterEmitter(*emitter_);
        QCOMPARE(EmitChanged(*emitter_), QByteArrayList());
        QCOMPARE(emitter_->ConnectedSignals().size(), 1);
    }

    void connectsToDestroyedOncePerRegistration()
    {
        TestObject object(log_, "object");
        int const before = object.DestroyedConnectionCount();
        RegisterReceiver(object);
        QCOMPARE(object.DestroyedConnectionCount(), before + 1);
        RegisterReceiver(object);
        QCOMPARE(object.DestroyedConnectionCount(), before + 2);
        UnregisterReceiver(object);
        QCOMPARE(object.DestroyedConnectionCount(), before + 2);
        RegisterEmitter(object);
        UnregisterEmitter(object);
        QCOMPARE(object.DestroyedConnectionCount(), before + 3);
    }

    // The test destroys a registered receiver and creates a new object at the same address. If the destroyed receiver
    // were still registered, ObjectsConnector would connect the new object.
    void removesADestroyedReceiver()
    {
        TestObject survivor(log_, "survivor");
        RegisterReceiver(*receiver_);
        RegisterReceiver(*receiver_, ReceiveValueSlot);
        RegisterReceiver(*receiver_);
        RegisterReceiver(survivor);
        receiver_.reset();
        receiver_.emplace(log_, "new object");
        RegisterEmitter(*emitter_);
        QCOMPARE(emitter_->ConnectedSignals(), QStringList{ChangedSignal});
        QCOMPARE(EmitChanged(*emitter_), QByteArrayList{"survivor"});
    }

    void removesADestroyedEmitter()
    {
        TestObject survivor(log_, "survivor");
        RegisterEmitter(*emitter_);
        RegisterEmitter(*emitter_, ValueChangedSignal);
        RegisterEmitter(survivor);
        ObjectsConnector::registerEmitter(OtherId, &*emitter_, ChangedSignal);
        emitter_.reset();
        emitter_.emplace(log_, "new object");
        RegisterReceiver(*receiver_);
        ObjectsConnector::registerReceiver(OtherId, &*receiver_, ReceiveSlot);
        QCOMPARE(emitter_->ConnectedSignals(), QStringList());
        QCOMPARE(survivor.ConnectedSignals(), QStringList{ChangedSignal});
    }

    void keepsOtherEntriesWhenAnUnregisteredObjectIsDestroyed()
    {
        TestObject survivor(log_, "survivor");
        RegisterReceiver(survivor);
        RegisterReceiver(*receiver_);
        UnregisterReceiver(*receiver_);
        receiver_.reset();
        RegisterEmitter(*emitter_);
        QCOMPARE(EmitChanged(*emitter_), QByteArrayList{"survivor"});
    }

    void removesADestroyedObjectBeforeLaterHandlersOfDestroyed()
    {
        RegisterReceiver(*receiver_);
        QObject::connect(&*receiver_, &QObject::destroyed, this, [this] { RegisterEmitter(*emitter_); });
        // Qt would log a warning if ObjectsConnector tried to connect the destroyed receiver.
        receiver_.reset();
        QCOMPARE(emitter_->ConnectedSignals(), QStringList());
    }

    // The receiver belongs to this thread, but another thread destroys it. ObjectsConnector must remove the receiver
    // immediately, not in a queued call.
    void removesAnObjectThatAnotherThreadDestroys()
    {
        RegisterReceiver(*receiver_);
        std::thread([this] { receiver_.reset(); }).join();
        receiver_.emplace(log_, "new object");
        RegisterEmitter(*emitter_);
        QCOMPARE(emitter_->ConnectedSignals(), QStringList());
    }

    void mayBeDestroyedAfterTheRegistry()
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        // This variable makes glibc overwrite freed memory. An access to a destroyed object then probably crashes.
        environment.insert(QStringLiteral("MALLOC_PERTURB_"), QStringLiteral("165"));
        process.setProcessEnvironment(environment);
        StartChildMain(process, "object destroyed last");
        QVERIFY(process.waitForFinished(TimeoutMs));
        QVERIFY2(process.exitStatus() == QProcess::NormalExit, process.readAllStandardError().constData());
        QCOMPARE(process.exitCode(), 0);
        QCOMPARE(process.readAllStandardError(), QByteArray());
        QCOMPARE(process.readAllStandardOutput(), QByteArray("destroyed"));
    }
};

int main(int argc, char** argv)
{
    return IsChildMain(argc, argv) ? RunChildMain(argc, argv, childMains)
                                   : RunTests<ObjectsConnectorRemovalTest>(argc, argv, false);
}

#include "ObjectsConnectorRemovalTest.moc"
