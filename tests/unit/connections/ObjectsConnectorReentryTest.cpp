#include <support/TestCase.h>

#include <Util/ObjectsConnector.h>

#include <QtCore/QMetaMethod>
#include <QtCore/QRegularExpression>
#include <QtTest/QtTest>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

using Zelkor::Util::ObjectsConnector;

/// Emitter that runs a callback when its signal is connected or disconnected.
class Emitter : public QObject
{
    Q_OBJECT

public:
    std::function<void()> onConnected = [] {};
    std::function<void()> onDisconnected = [] {};

Q_SIGNALS:
    void Changed();

protected:
    void connectNotify(QMetaMethod const& signal) override { Call(onConnected, signal); }
    void disconnectNotify(QMetaMethod const& signal) override { Call(onDisconnected, signal); }

private:
    static void Call(std::function<void()> function, QMetaMethod const& signal)
    {
        if (signal == QMetaMethod::fromSignal(&Emitter::Changed)) {
            function();
        }
    }
};

/// Receiver that counts the calls to its slot.
class Receiver : public QObject
{
    Q_OBJECT

public:
    int count = 0;

public Q_SLOTS:
    void Receive() { ++count; }
};

namespace
{

QString const Id = QStringLiteral("volume");
QString const ChangedSignal = QStringLiteral("Changed()");
QString const ReceiveSlot = QStringLiteral("Receive()");

void RegisterEmitter(Emitter& emitter)
{
    ObjectsConnector::registerEmitter(Id, &emitter, ChangedSignal);
}

void RegisterReceiver(Receiver& receiver)
{
    ObjectsConnector::registerReceiver(Id, &receiver, ReceiveSlot);
}

} // namespace

/// Tests in which objects are registered, unregistered or destroyed while ObjectsConnector connects, disconnects or
/// removes objects.
class ObjectsConnectorReentryTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void connectsAReceiverThatIsUnregisteredMeanwhile()
    {
        emitter_->onConnected = [this] { ObjectsConnector::unregisterReceiver(Id, second_.get(), ReceiveSlot); };
        RegisterReceiver(*first_);
        RegisterReceiver(*second_);
        RegisterEmitter(*emitter_);

        Q_EMIT emitter_->Changed();
        QCOMPARE(first_->count, 1);
        QCOMPARE(second_->count, 1);
    }

    void skipsAReceiverThatIsDestroyedMeanwhile()
    {
        emitter_->onConnected = [this] { second_.reset(); };
        RegisterReceiver(*first_);
        RegisterReceiver(*second_);
        RegisterReceiver(*third_);
        RegisterEmitter(*emitter_);

        Q_EMIT emitter_->Changed();
        QCOMPARE(first_->count, 1);
        QCOMPARE(third_->count, 1);
    }

    void doesNotRecordAnEmitterThatIsDestroyedMeanwhile()
    {
        emitter_->onConnected = [this] { emitter_.reset(); };
        RegisterReceiver(*first_);
        RegisterReceiver(*second_);
        RegisterEmitter(*emitter_);

        Receiver late;
        // If ObjectsConnector had stored the destroyed emitter, this call would use a dangling pointer.
        RegisterReceiver(late);
        QVERIFY(!emitter_);
    }

    void doesNotRecordAReceiverThatIsDestroyedMeanwhile()
    {
        RegisterEmitter(*emitter_);
        emitter_->onConnected = [this] { first_.reset(); };
        RegisterReceiver(*first_);

        Emitter late;
        RegisterEmitter(late);
        QVERIFY(!first_);
    }

    void stopsWhenTheUnregisteredEmitterIsDestroyedMeanwhile()
    {
        RegisterReceiver(*first_);
        RegisterReceiver(*second_);
        RegisterEmitter(*emitter_);
        emitter_->onDisconnected = [this] { emitter_.reset(); };

        ObjectsConnector::unregisterEmitter(Id, emitter_.get(), ChangedSignal);
        QVERIFY(!emitter_);
    }

    void skipsAReceiverThatIsDestroyedDuringUnregistration()
    {
        RegisterReceiver(*first_);
        RegisterReceiver(*second_);
        RegisterReceiver(*third_);
        RegisterEmitter(*emitter_);
        emitter_->onDisconnected = [this] { second_.reset(); };

        ObjectsConnector::unregisterEmitter(Id, emitter_.get(), ChangedSignal);
        Q_EMIT emitter_->Changed();
        QVERIFY(!second_);
        QCOMPARE(third_->count, 0);
    }

    void stopsWhenAnEmitterThatIsNotRegisteredIsDestroyedMeanwhile()
    {
        RegisterReceiver(*first_);
        RegisterReceiver(*second_);
        connect(emitter_.get(), SIGNAL(Changed()), first_.get(), SLOT(Receive()));
        emitter_->onDisconnected = [this] { emitter_.reset(); };

        ObjectsConnector::unregisterEmitter(Id, emitter_.get(), ChangedSignal);
        QVERIFY(!emitter_);
    }

    void stopsWhenAnUnregisteredReceiverIsDestroyedMeanwhile_data()
    {
        QTest::addColumn<bool>("isRegistered");
        QTest::newRow("registered") << true;
        QTest::newRow("connected without registration") << false;
    }

    void stopsWhenAnUnregisteredReceiverIsDestroyedMeanwhile()
    {
        QFETCH(bool, isRegistered);
        Emitter other;
        RegisterEmitter(*emitter_);
        RegisterEmitter(other);
        if (isRegistered) {
            RegisterReceiver(*first_);
        } else {
            connect(emitter_.get(), SIGNAL(Changed()), first_.get(), SLOT(Receive()));
        }
        emitter_->onDisconnected = [this] { first_.reset(); };

        ObjectsConnector::unregisterReceiver(Id, first_.get(), ReceiveSlot);
        QVERIFY(!first_);
    }

    void skipsAnEmitterThatIsDestroyedDuringUnregistration()
    {
        auto other = std::make_unique<Emitter>();
        Emitter last;
        RegisterEmitter(*emitter_);
        RegisterEmitter(*other);
        RegisterEmitter(last);
        RegisterReceiver(*first_);
        emitter_->onDisconnected = [&other] { other.reset(); };

        ObjectsConnector::unregisterReceiver(Id, first_.get(), ReceiveSlot);
        Q_EMIT last.Changed();
        QVERIFY(!other);
        QCOMPARE(first_->count, 0);
    }

    void stopsWhenAnEmitterIsUnregisteredAndDestroyedDuringRegistration()
    {
        RegisterReceiver(*first_);
        RegisterReceiver(*second_);
        emitter_->onConnected = [this] { ObjectsConnector::unregisterEmitter(Id, emitter_.get(), ChangedSignal); };
        emitter_->onDisconnected = [this] { emitter_.reset(); };

        RegisterEmitter(*emitter_);
        QVERIFY(!emitter_);
    }

    void doesNotRemoveARegistrationThatReplacesTheUnregisteredObject()
    {
        // The new emitter has the address of the destroyed emitter.
        std::optional<Emitter> emitter(std::in_place);
        RegisterReceiver(*first_);
        RegisterEmitter(*emitter);
        emitter->onDisconnected = [&emitter] {
            emitter.emplace();
            RegisterEmitter(*emitter);
        };
        ObjectsConnector::unregisterEmitter(Id, &*emitter, ChangedSignal);

        RegisterReceiver(*second_);
        Q_EMIT emitter->Changed();
        QCOMPARE(second_->count, 1);
    }

    void objectMayBeUnregisteredInDestroyed_data()
    {
        QTest::addColumn<bool>("isEmitter");
        QTest::addColumn<bool>("beforeRegistry");
        for (bool const isEmitter : {false, true}) {
            QTest::addRow("%s, before the slot of ObjectsConnector", isEmitter ? "emitter" : "receiver")
                << isEmitter << true;
            QTest::addRow("%s, after the slot of ObjectsConnector", isEmitter ? "emitter" : "receiver")
                << isEmitter << false;
        }
    }

    void objectMayBeUnregisteredInDestroyed()
    {
        QFETCH(bool, isEmitter);
        QFETCH(bool, beforeRegistry);
        QObject* const object = isEmitter ? static_cast<QObject*>(emitter_.get()) : first_.get();
        auto const unregisterInDestroyed = [&] {
            connect(object, &QObject::destroyed, this, [isEmitter](QObject* destroyed) {
                isEmitter ? ObjectsConnector::unregisterEmitter(Id, destroyed, ChangedSignal)
                          : ObjectsConnector::unregisterReceiver(Id, destroyed, ReceiveSlot);
            });
        };
        if (beforeRegistry) {
            unregisterInDestroyed();
        }
        RegisterEmitter(*emitter_);
        RegisterReceiver(*first_);
        if (!beforeRegistry) {
            unregisterInDestroyed();
        }

        // ~QObject() emits destroyed(). At that time, the signals and slots of derived classes no longer exist.
        // Therefore, the attempt of ObjectsConnector to disconnect them causes a Qt warning.
        ExpectQtWarning(
            QRegularExpression(QStringLiteral("No such (signal QObject::Changed|slot QObject::Receive)\\(\\)")));
        isEmitter ? emitter_.reset() : first_.reset();

        Emitter lateEmitter;
        Receiver lateReceiver;
        RegisterEmitter(lateEmitter);
        RegisterReceiver(lateReceiver);
        Q_EMIT lateEmitter.Changed();
        QCOMPARE(lateReceiver.count, 1);
    }

    void otherObjectsMayBeRegisteredInDestroyed()
    {
        Emitter late;
        connect(first_.get(), &QObject::destroyed, this, [&late] { RegisterEmitter(late); });
        RegisterReceiver(*first_);
        RegisterReceiver(*second_);

        ExpectQtWarning(QRegularExpression(QStringLiteral("No such slot QObject::Receive\\(\\)")));
        first_.reset();
        Q_EMIT late.Changed();
        QCOMPARE(second_->count, 1);
    }

protected:
    void SetUp() override
    {
        emitter_ = std::make_unique<Emitter>();
        first_ = std::make_unique<Receiver>();
        second_ = std::make_unique<Receiver>();
        third_ = std::make_unique<Receiver>();
    }

    void TearDown() override
    {
        if (emitter_) {
            emitter_->onDisconnected = [] {};
        }
        emitter_.reset();
        first_.reset();
        second_.reset();
        third_.reset();
    }

private:
    std::unique_ptr<Emitter> emitter_;
    std::unique_ptr<Receiver> first_;
    std::unique_ptr<Receiver> second_;
    std::unique_ptr<Receiver> third_;
};

ZQTUTIL_TEST_MAIN(ObjectsConnectorReentryTest)

#include "ObjectsConnectorReentryTest.moc"
