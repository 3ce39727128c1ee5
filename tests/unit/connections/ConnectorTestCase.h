#pragma once

#include <support/TestCase.h>

#include <Util/ObjectsConnector.h>

#include <QtCore/QMetaMethod>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace Zelkor::Testing
{

/// Sends and receives, and notes what it receives and which of its signals become connected and disconnected.
class Party : public QObject
{
    Q_OBJECT

public:
    static inline QStringList log; // of what all of them receive

    Party(char const* name)
        : name_(QString::fromLatin1(name))
    {}

    QStringList const& Connected() const { return connected_; }
    QStringList const& Disconnected() const { return disconnected_; }
    int DestructionHandlers() const { return receivers(SIGNAL(destroyed(QObject*))); }

Q_SIGNALS:
    void Changed();
    void ValueChanged(int value);

public Q_SLOTS:
    void Note() { log += name_; }
    void Set(int value) { log += name_ + QLatin1Char('=') + QString::number(value); }

protected:
    void connectNotify(QMetaMethod const& signal) override { Add(connected_, signal); }
    void disconnectNotify(QMetaMethod const& signal) override { Add(disconnected_, signal); }

private:
    static void Add(QStringList& list, QMetaMethod const& signal)
    {
        if (signal.enclosingMetaObject() == &staticMetaObject) {
            list += QString::fromUtf8(signal.methodSignature());
        }
    }

    QString name_;
    QStringList connected_;
    QStringList disconnected_;
};

/// Tests of connections by name between an emitter and a receiver, and whatever a test adds.
class ConnectorTestCase : public TestCase
{
    Q_OBJECT

protected:
    static inline QString const Id = QStringLiteral("volume");
    static inline QString const Changed = QStringLiteral("Changed()");
    static inline QString const ValueChanged = QStringLiteral("ValueChanged(int)");
    static inline QString const Note = QStringLiteral("Note()");
    static inline QString const Set = QStringLiteral("Set(int)");

    static void RegisterEmitter(Party& party, QString const& signal = Changed);
    static void RegisterReceiver(Party& party, QString const& slot = Note);
    static void UnregisterEmitter(Party& party, QString const& signal = Changed);
    static void UnregisterReceiver(Party& party, QString const& slot = Note);

    /// What arrives at the slots, in order, when \a party sends.
    static QStringList Heard(Party& party);

    static QStringList Words(char const* words);

    /// The column "isEmitter", and a row for either side.
    static void AddSides(char const* emitter, char const* receiver);

    void SetUp() override;
    void TearDown() override;

    std::optional<Party> emitter_;
    std::optional<Party> receiver_;
};

} // namespace Zelkor::Testing
