#pragma once

#include <support/TestCase.h>

#include <Util/ObjectsConnector.h>

#include <QtCore/QByteArrayList>
#include <QtCore/QMetaMethod>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>
#include <utility>

namespace Zelkor::Testing
{

/// Object that emits and receives signals. It logs the calls to its slots, and it records which of its signals are
/// connected and disconnected.
class TestObject : public QObject
{
    Q_OBJECT

public:
    /// Creates an object that appends an entry to \a log for each call of one of its slots. The entry begins with \a
    /// name. \a log must outlive the object.
    TestObject(QByteArrayList& log, QByteArray name)
        : log_(log)
        , name_(std::move(name))
    {}

    /// Returns the signatures of the signals of this object that have been connected so far: one entry per connection.
    QStringList const& ConnectedSignals() const { return connectedSignals_; }

    /// Returns the signatures of the signals of this object that have been disconnected so far.
    QStringList const& DisconnectedSignals() const { return disconnectedSignals_; }

    int DestroyedConnectionCount() const { return receivers(SIGNAL(destroyed(QObject*))); }

Q_SIGNALS:
    void Changed();
    void ValueChanged(int value);

public Q_SLOTS:
    void Receive() { log_ += name_; }
    void ReceiveValue(int value) { log_ += name_ + '=' + QByteArray::number(value); }

protected:
    void connectNotify(QMetaMethod const& signal) override { Record(connectedSignals_, signal); }
    void disconnectNotify(QMetaMethod const& signal) override { Record(disconnectedSignals_, signal); }

private:
    static void Record(QStringList& signatures, QMetaMethod const& signal)
    {
        if (signal.enclosingMetaObject() == &staticMetaObject) {
            signatures += QString::fromUtf8(signal.methodSignature());
        }
    }

    QByteArrayList& log_;
    QByteArray name_;
    QStringList connectedSignals_;
    QStringList disconnectedSignals_;
};

/// Base class for the tests of ObjectsConnector. Provides an emitter, a receiver, and a log of the slots that are
/// called.
class ConnectorTestCase : public TestCase
{
    Q_OBJECT

protected:
    static inline QString const Id = QStringLiteral("volume");
    static inline QString const OtherId = QStringLiteral("balance");
    static inline QString const ChangedSignal = QStringLiteral("Changed()");
    static inline QString const ValueChangedSignal = QStringLiteral("ValueChanged(int)");
    static inline QString const ReceiveSlot = QStringLiteral("Receive()");
    static inline QString const ReceiveValueSlot = QStringLiteral("ReceiveValue(int)");

    static void RegisterEmitter(TestObject& object, QString const& signal = ChangedSignal);
    static void RegisterReceiver(TestObject& object, QString const& slot = ReceiveSlot);
    static void UnregisterEmitter(TestObject& object, QString const& signal = ChangedSignal);
    static void UnregisterReceiver(TestObject& object, QString const& slot = ReceiveSlot);

    /// Emits Changed() of \a emitter. Returns the log entries of the slots that run during the emission, in call order.
    /// Queued calls are not included.
    QByteArrayList EmitChanged(TestObject& emitter);

    /// Adds the test data column "isEmitter" and two rows: \a emitterRow, in which the value is true, and
    /// \a receiverRow, in which the value is false.
    static void AddEmitterAndReceiverRows(char const* emitterRow = "emitter", char const* receiverRow = "receiver");

    void SetUp() override;
    void TearDown() override;

    QByteArrayList log_;
    std::optional<TestObject> emitter_;
    std::optional<TestObject> receiver_;
};

} // namespace Zelkor::Testing
