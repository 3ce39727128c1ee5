#include <support/Timeouts.h>
#include <support/logs/LogCapture.h>
#include <unit/connections/ConnectorTestCase.h>

#include <Util/ObjectsConnector.h>

#include <QtCore/QMetaMethod>
#include <QtTest/QtTest>

#include <future>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

using Zelkor::Testing::LogCapture;
using Zelkor::Testing::LogLine;
using Zelkor::Testing::TestObject;
using Zelkor::Testing::Timeout;
using Zelkor::Util::ObjectsConnector;

using Register = void (*)(QString const&, QObject*, QString const&, bool);
using Unregister = void (*)(QString const&, QObject*, QString const&);

static_assert(std::is_base_of_v<QObject, ObjectsConnector>);
static_assert(std::is_constructible_v<ObjectsConnector, QObject*> &&
              !std::is_convertible_v<QObject*, ObjectsConnector>);
static_assert(std::is_polymorphic_v<ObjectsConnector> && std::has_virtual_destructor_v<ObjectsConnector>);
static_assert(!std::is_final_v<ObjectsConnector>);
static_assert(!std::is_copy_constructible_v<ObjectsConnector> && !std::is_copy_assignable_v<ObjectsConnector>);
static_assert(!std::is_move_constructible_v<ObjectsConnector> && !std::is_move_assignable_v<ObjectsConnector>);
static_assert(sizeof(ObjectsConnector) == sizeof(QObject));
static_assert(std::is_same_v<decltype(&ObjectsConnector::registerEmitter), Register>);
static_assert(std::is_same_v<decltype(&ObjectsConnector::registerReceiver), Register>);
static_assert(std::is_same_v<decltype(&ObjectsConnector::unregisterEmitter), Unregister>);
static_assert(std::is_same_v<decltype(&ObjectsConnector::unregisterReceiver), Unregister>);
static_assert(std::is_same_v<decltype(Zelkor::Util::TYPE_SIGNAL), std::string const>);
static_assert(std::is_same_v<decltype(Zelkor::Util::TYPE_SLOT), std::string const>);

/// Receiver that reports the thread on which its slot is called.
class ThreadReporter : public QObject
{
    Q_OBJECT

public:
    std::future<QThread*> CallingThread() { return promise_.get_future(); }

public Q_SLOTS:
    void Receive() { promise_.set_value(QThread::currentThread()); }

private:
    std::promise<QThread*> promise_;
};

namespace
{

/// Returns a pattern for the warning that Qt logs when it cannot connect a signal. \a reason is the part of the warning
/// after "QObject::connect: ", in UTF-8.
QRegularExpression ConnectWarning(char const* reason)
{
    QString const text = QStringLiteral("QObject::connect: ") + QString::fromUtf8(reason);
    return QRegularExpression(QRegularExpression::anchoredPattern(QRegularExpression::escape(text)));
}

/// A signal and a slot that Qt cannot connect. Qt's warning ends with the text `reason`. All strings are in UTF-8.
struct RejectedPair
{
    char const* name;
    char const* signal;
    char const* slot;
    char const* reason;
};

constexpr RejectedPair rejectedPairs[] = {
    {"unknown signal", "Unknown()", "Receive()", "No such signal Zelkor::Testing::TestObject::Unknown()"},
    {"unknown slot", "Changed()", "Unknown()", "No such slot Zelkor::Testing::TestObject::Unknown()"},
    {"signal beyond ASCII", u8"Ge\u00E4ndert\u4E2D()", "Receive()",
     u8"No such signal Zelkor::Testing::TestObject::Ge\u00E4ndert\u4E2D()"},
    {"slot beyond ASCII", "Changed()", u8"\u00C4ndern()", u8"No such slot Zelkor::Testing::TestObject::\u00C4ndern()"},
    {"percent signs", "%1%()", "Receive()", "No such signal Zelkor::Testing::TestObject::%1%()"},
    {"signal with the code of a slot", "1Changed()", "Receive()",
     "No such signal Zelkor::Testing::TestObject::1Changed()"},
    {"slot with the code of a signal", "Changed()", "2Receive()",
     "No such slot Zelkor::Testing::TestObject::2Receive()"},
    {"code after a space", "Changed()", " 1Receive()", "No such slot Zelkor::Testing::TestObject:: 1Receive()"},
    {"slot as the signal", "Receive()", "Receive()", "No such signal Zelkor::Testing::TestObject::Receive()"},
    {"signal as the slot", "Changed()", "Changed()", "No such slot Zelkor::Testing::TestObject::Changed()"},
    {"signal without parentheses", "Changed", "Receive()",
     "Parentheses expected, signal Zelkor::Testing::TestObject::Changed"},
    {"slot without parentheses", "Changed()", "Receive",
     "Parentheses expected, slot Zelkor::Testing::TestObject::Receive"},
    {"empty signal", "", "Receive()", "Parentheses expected, signal Zelkor::Testing::TestObject::"},
    {"empty slot", "Changed()", "", "Parentheses expected, slot Zelkor::Testing::TestObject::"},
    {"incompatible parameters", "Changed()", "ReceiveValue(int)",
     "Incompatible sender/receiver arguments\n"
     "        Zelkor::Testing::TestObject::Changed() --> Zelkor::Testing::TestObject::ReceiveValue(int)"},
};

using Call = void (*)();

} // namespace

Q_DECLARE_METATYPE(RejectedPair)
Q_DECLARE_METATYPE(Call)

class ObjectsConnectorTest : public Zelkor::Testing::ConnectorTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void hasItsNameAndBase()
    {
        QMetaObject const& metaObject = ObjectsConnector::staticMetaObject;
        QCOMPARE(QByteArray(metaObject.className()), QByteArray("Zelkor::Util::ObjectsConnector"));
        QVERIFY(metaObject.superClass() == &QObject::staticMetaObject);
        QCOMPARE(metaObject.propertyCount(), metaObject.propertyOffset());
        QCOMPARE(metaObject.methodCount() - metaObject.methodOffset(), 7);
    }

    void isOwnedByItsParent()
    {
        auto parent = std::make_unique<QObject>();
        QPointer<ObjectsConnector> const connector(new ObjectsConnector(parent.get()));
        QCOMPARE(connector->parent(), parent.get());
        parent.reset();
        QVERIFY(connector.isNull());
    }

    void definesTheNamesOfTheRoles()
    {
        QCOMPARE(Zelkor::Util::TYPE_SIGNAL, std::string("TYPE_SIGNAL"));
        QCOMPARE(Zelkor::Util::TYPE_SLOT, std::string("TYPE_SLOT"));
    }

    void offersItsOperationsThroughTheMetaObject_data()
    {
        QTest::addColumn<QByteArray>("signature");
        QTest::addColumn<QByteArrayList>("parameterNames");
        QTest::addColumn<bool>("isPublic");
        QTest::addColumn<bool>("isCloned");
        QTest::newRow("registerEmitter") << QByteArray("registerEmitter(QString,QObject*,QString,bool)")
                                         << QByteArrayList{"ID", "sender", "signal", "queued"} << true << false;
        QTest::newRow("registerEmitter, default argument") << QByteArray("registerEmitter(QString,QObject*,QString)")
                                                           << QByteArrayList{"ID", "sender", "signal"} << true << true;
        QTest::newRow("registerReceiver") << QByteArray("registerReceiver(QString,QObject*,QString,bool)")
                                          << QByteArrayList{"ID", "receiver", "slot", "queued"} << true << false;
        QTest::newRow("registerReceiver, default argument") << QByteArray("registerReceiver(QString,QObject*,QString)")
                                                            << QByteArrayList{"ID", "receiver", "slot"} << true << true;
        QTest::newRow("unregisterReceiver") << QByteArray("unregisterReceiver(QString,QObject*,QString)")
                                            << QByteArrayList{"ID", "receiver", "slot"} << true << false;
        QTest::newRow("unregisterEmitter") << QByteArray("unregisterEmitter(QString,QObject*,QString)")
                                           << QByteArrayList{"ID", "sender", "signal"} << true << false;
        QTest::newRow("registerMetaType")
            << QByteArray("registerMetaType(QString,std::string,std::pair<const QObject*,const std::string>)")
            << QByteArrayList{"ID", "metaType", "metaPair"} << false << false;
    }

    void offersItsOperationsThroughTheMetaObject()
    {
        QFETCH(QByteArray, signature);
        QFETCH(QByteArrayList, parameterNames);
        QFETCH(bool, isPublic);
        QFETCH(bool, isCloned);
        QMetaObject const& metaObject = ObjectsConnector::staticMetaObject;
        QByteArray const normalized = QMetaObject::normalizedSignature(signature.constData());
        QMetaMethod const method = metaObject.method(metaObject.indexOfMethod(normalized.constData()));
        QVERIFY(method.isValid());
        QCOMPARE(method.methodType(), QMetaMethod::Method);
        QCOMPARE(method.returnType(), static_cast<int>(QMetaType::Void));
        QCOMPARE(method.parameterNames(), parameterNames);
        QCOMPARE(method.access(), isPublic ? QMetaMethod::Public : QMetaMethod::Private);
        QCOMPARE((method.attributes() & QMetaMethod::Cloned) != 0, isCloned);
    }

    void canBeCalledByName()
    {
        QVERIFY(CallByName("registerReceiver", *receiver_, ReceiveSlot));
        QVERIFY(CallByName("registerEmitter", *emitter_, ChangedSignal));
        QCOMPARE(EmitChanged(*emitter_), QByteArrayList{"receiver"});
        QVERIFY(CallByName("unregisterReceiver", *receiver_, ReceiveSlot));
        QCOMPARE(EmitChanged(*emitter_), QByteArrayList());
        RegisterReceiver(*receiver_);
        QVERIFY(CallByName("unregisterEmitter", *emitter_, ChangedSignal));
        QCOMPARE(EmitChanged(*emitter_), QByteArrayList());
    }

    void canBeCalledByNameWithTheQueuedFlag_data() { AddEmitterAndReceiverRows(); }

    void canBeCalledByNameWithTheQueuedFlag()
    {
        QFETCH(bool, isEmitter);
        for (bool const queued : {true, false}) {
            isEmitter ? RegisterReceiver(*receiver_) : RegisterEmitter(*emitter_);
            QVERIFY(isEmitter ? CallByName("registerEmitter", *emitter_, ChangedSignal, Q_ARG(bool, queued))
                              : CallByName("registerReceiver", *receiver_, ReceiveSlot, Q_ARG(bool, queued)));
            QCOMPARE(EmitChanged(*emitter_).isEmpty(), queued);
            QCoreApplication::sendPostedEvents(&*receiver_);
            QCOMPARE(log_.size(), queued ? 1 : 0);
            UnregisterEmitter(*emitter_);
            UnregisterReceiver(*receiver_);
        }
    }

    void registerMetaTypeRecordsAnEmitterWithoutConnecting()
    {
        RegisterReceiver(*receiver_);
        ObjectsConnector connector(nullptr);
        std::pair<QObject const*, std::string const> const entry(&*emitter_, "2Changed()");
        QVERIFY(QMetaObject::invokeMethod(
            &connector, "registerMetaType", Q_ARG(QString, Id), Q_ARG(std::string, Zelkor::Util::TYPE_SIGNAL),
            QGenericArgument("std::pair<const QObject*,const std::string>", static_cast<void const*>(&entry))));
        QCOMPARE(emitter_->ConnectedSignals(), QStringList());
        TestObject late(log_, "late");
        RegisterReceiver(late);
        QCOMPARE(EmitChanged(*emitter_), QByteArrayList{"late"});
    }

    void registerMetaTypeRecordsAReceiverWithoutConnecting()
    {
        RegisterEmitter(*emitter_);
        ObjectsConnector connector(nullptr);
        std::pair<QObject const*, std::string const> const entry(&*receiver_, "1Receive()");
        QVERIFY(QMetaObject::invokeMethod(
            &connector, "registerMetaType", Q_ARG(QString, Id), Q_ARG(std::string, Zelkor::Util::TYPE_SLOT),
            QGenericArgument("std::pair<const QObject*,const std::string>", static_cast<void const*>(&entry))));
        QCOMPARE(emitter_->ConnectedSignals(), QStringList());
        TestObject late(log_, "late");
        RegisterEmitter(late);
        QCOMPARE(EmitChanged(late), QByteArrayList{"receiver"});
        receiver_.reset();
        receiver_.emplace(log_, "successor");
        TestObject later(log_, "later");
        RegisterEmitter(later);
        QCOMPARE(later.ConnectedSignals(), QStringList());
    }

    void keepsEntriesAfterTheConnectorIsDestroyed()
    {
        {
            ObjectsConnector const connector(nullptr);
            ObjectsConnector::registerReceiver(Id, &*receiver_, ReceiveSlot);
        }
        RegisterEmitter(*emitter_);
        QCOMPARE(EmitChanged(*emitter_), QByteArrayList{"receiver"});
    }

    void connectsInEitherOrderOfRegistration_data()
    {
        AddEmitterAndReceiverRows("receiver, then emitter", "emitter, then receiver");
    }

    void connectsInEitherOrderOfRegistration()
    {
        QFETCH(bool, isEmitter); // true: the emitter is registered last; false: the receiver is registered last
        isEmitter ? RegisterReceiver(*receiver_, ReceiveValueSlot) : RegisterEmitter(*emitter_, ValueChangedSignal);
        isEmitter ? RegisterEmitter(*emitter_, ValueChangedSignal) : RegisterReceiver(*receiver_, ReceiveValueSlot);
        QCOMPARE(emitter_->ConnectedSignals(), QStringList{ValueChangedSignal});
        Q_EMIT emitter_->ValueChanged(7);
        QCOMPARE(log_, QByteArrayList{"receiver=7"});
        Q_EMIT receiver_->ValueChanged(8);
        QCOMPARE(log_.size(), 1);
    }

    void callsReceiversInTheOrderOfTheirRegistration()
    {
        TestObject second(log_, "second");
        TestObject first(log_, "first");
        TestObject third(log_, "third");
        RegisterReceiver(first);
        RegisterReceiver(second);
        RegisterEmitter(*emitter_);
        RegisterReceiver(third);
        QCOMPARE(EmitChanged(*emitter_), (QByteArrayList{"first", "second", "third"}));
    }

    void connectsEmittersInTheOrderOfTheirRegistration()
    {
        RegisterEmitter(*emitter_, ValueChangedSignal);
        RegisterEmitter(*emitter_, ChangedSignal);
        RegisterReceiver(*receiver_);
        QCOMPARE(emitter_->ConnectedSignals(), (QStringList{ValueChangedSignal, ChangedSignal}));
    }

    void connectsEveryEmitterToEveryReceiver()
    {
        TestObject emitters[] = {{log_, "emitter1"}, {log_, "emitter2"}};
        TestObject receivers[] = {{log_, "receiver1"}, {log_, "receiver2"}};
        RegisterReceiver(receivers[0]);
        RegisterEmitter(emitters[0]);
        RegisterEmitter(emitters[1]);
        RegisterReceiver(receivers[1]);
        for (TestObject& emitter : emitters) {
            QCOMPARE(EmitChanged(emitter), (QByteArrayList{"receiver1", "receiver2"}));
        }
    }

    void connectsOnlyObjectsWithTheSameId_data()
    {
        QTest::addColumn<QString>("other");
        QTest::newRow("different word") << OtherId;
        QTest::newRow("different case") << QStringLiteral("Volume");
        QTest::newRow("trailing space") << QStringLiteral("volume ");
        QTest::newRow("empty") << QString();
    }

    void connectsOnlyObjectsWithTheSameId()
    {
        QFETCH(QString, other);
        TestObject otherReceiver(log_, "otherReceiver");
        RegisterReceiver(*receiver_);
        ObjectsConnector::registerReceiver(other, &otherReceiver, ReceiveSlot);
        RegisterEmitter(*emitter_);
        QCOMPARE(EmitChanged(*emitter_), QByteArrayList{"receiver"});
        ObjectsConnector::registerEmitter(other, &*emitter_, ChangedSignal);
        QCOMPARE(EmitChanged(*emitter_), (QByteArrayList{"receiver", "otherReceiver"}));
        ObjectsConnector::unregisterReceiver(QStringLiteral("never used"), &*receiver_, ReceiveSlot);
        ObjectsConnector::unregisterEmitter(QStringLiteral("never used"), &*emitter_, ChangedSignal);
        QCOMPARE(EmitChanged(*emitter_).size(), 2);
        ObjectsConnector::unregisterReceiver(other, &otherReceiver, ReceiveSlot);
        QCOMPARE(EmitChanged(*emitter_), QByteArrayList{"receiver"});
    }

    void connectsAPairWithTwoSharedIdsOnce()
    {
        RegisterEmitter(*emitter_);
        ObjectsConnector::registerEmitter(OtherId, &*emitter_, ChangedSignal);
        RegisterReceiver(*receiver_);
        ObjectsConnector::registerReceiver(OtherId, &*receiver_, ReceiveSlot);
        QCOMPARE(EmitChanged(*emitter_), QByteArrayList{"receiver"});
        ObjectsConnector::unregisterReceiver(OtherId, &*receiver_, ReceiveSlot);
        QCOMPARE(EmitChanged(*emitter_), QByteArrayList());
        TestObject late(log_, "late");
        RegisterEmitter(late);
        QCOMPARE(EmitChanged(late), QByteArrayList{"receiver"});
    }

    void connectsAPairOnlyOnce()
    {
        QVERIFY(QObject::connect(&*emitter_, SIGNAL(Changed()), &*receiver_, SLOT(Receive())));
        RegisterReceiver(*receiver_);
        RegisterEmitter(*emitter_);
        RegisterEmitter(*emitter_);
        RegisterReceiver(*receiver_);
        ObjectsConnector::registerReceiver(Id, &*receiver_, ReceiveSlot, true);
        QCOMPARE(EmitChanged(*emitter_), QByteArrayList{"receiver"});
        QCoreApplication::sendPostedEvents(&*receiver_);
        QCOMPARE(log_, QByteArrayList());
        QCOMPARE(emitter_->ConnectedSignals(), QStringList{ChangedSignal});
    }

    void lastRegistrationDecidesWhetherTheConnectionIsQueued_data()
    {
        QTest::addColumn<bool>("isEmitter");
        QTest::addColumn<bool>("first");
        QTest::addColumn<bool>("second");
        auto const prefix = [](bool queued) { return queued ? "queued " : ""; };
        for (bool const first : {false, true}) {
            for (bool const second : {false, true}) {
                QTest::addRow("%sreceiver, %semitter", prefix(first), prefix(second)) << true << first << second;
                QTest::addRow("%semitter, %sreceiver", prefix(first), prefix(second)) << false << first << second;
            }
        }
    }

    void lastRegistrationDecidesWhetherTheConnectionIsQueued()
    {
        QFETCH(bool, isEmitter); // true: the emitter is registered last; false: the receiver is registered last
        QFETCH(bool, first);
        QFETCH(bool, second);
        if (isEmitter) {
            ObjectsConnector::registerReceiver(Id, &*receiver_, ReceiveSlot, first);
            ObjectsConnector::registerEmitter(Id, &*emitter_, ChangedSignal, second);
        } else {
            ObjectsConnector::registerEmitter(Id, &*emitter_, ChangedSignal, first);
            ObjectsConnector::registerReceiver(Id, &*receiver_, ReceiveSlot, second);
        }
        QByteArrayList const receiverOnly{"receiver"};
        QCOMPARE(EmitChanged(*emitter_), second ? QByteArrayList() : receiverOnly);
        QCoreApplication::sendPostedEvents(&*receiver_);
        QCOMPARE(log_, second ? receiverOnly : QByteArrayList());
    }

    void callsTheSlotOnTheThreadOfTheReceiver()
    {
        auto const receiver = std::make_unique<ThreadReporter>();
        auto callingThread = receiver->CallingThread();
        ObjectsConnector::registerReceiver(Id, receiver.get(), ReceiveSlot);
        RegisterEmitter(*emitter_);
        QThread thread;
        receiver->moveToThread(&thread);
        thread.start();
        Q_EMIT emitter_->Changed();
        bool const isReady = callingThread.wait_for(Timeout) == std::future_status::ready;
        thread.quit();
        QVERIFY(thread.wait(QDeadlineTimer(Timeout)));
        QVERIFY(isReady);
        QCOMPARE(callingThread.get(), &thread);
    }

    void neverConnectsAnObjectToItself_data()
    {
        AddEmitterAndReceiverRows("receiver, then emitter", "emitter, then receiver");
    }

    void neverConnectsAnObjectToItself()
    {
        QFETCH(bool, isEmitter); // true: "both" is registered as an emitter last; false: as a receiver last
        TestObject both(log_, "both");
        RegisterReceiver(*receiver_);
        RegisterEmitter(*emitter_);
        isEmitter ? RegisterReceiver(both) : RegisterEmitter(both);
        isEmitter ? RegisterEmitter(both) : RegisterReceiver(both);
        QCOMPARE(EmitChanged(both), QByteArrayList{"receiver"});
        QCOMPARE(EmitChanged(*emitter_), (QByteArrayList{"receiver", "both"}));
    }

    void acceptsSignaturesWithAndWithoutCode_data()
    {
        QTest::addColumn<QString>("signal");
        QTest::addColumn<QString>("slot");
        QTest::newRow("literal code") << QStringLiteral("2ValueChanged(int)") << QStringLiteral("1ReceiveValue(int)");
        QTest::newRow("macros SIGNAL and SLOT")
            << QString::fromLatin1(SIGNAL(ValueChanged(int))) << QString::fromLatin1(SLOT(ReceiveValue(int)));
        QTest::newRow("no code") << ValueChangedSignal << ReceiveValueSlot;
    }

    // The macros SIGNAL() and SLOT() add a code of one digit at the beginning of a signature. ObjectsConnector must
    // ignore this code when it compares signatures.
    void acceptsSignaturesWithAndWithoutCode()
    {
        QFETCH(QString, signal);
        QFETCH(QString, slot);
        RegisterReceiver(*receiver_, slot);
        RegisterEmitter(*emitter_, signal);
        QCOMPARE(emitter_->ConnectedSignals(), QStringList{ValueChangedSignal});
        UnregisterEmitter(*emitter_, ValueChangedSignal);
        UnregisterReceiver(*receiver_, ReceiveValueSlot);
        RegisterReceiver(*receiver_, ReceiveValueSlot);
        RegisterEmitter(*emitter_, ValueChangedSignal);
        UnregisterEmitter(*emitter_, signal);
        UnregisterReceiver(*receiver_, slot);
        TestObject both(log_, "both");
        RegisterReceiver(both, slot);
        RegisterEmitter(both, signal);
        QCOMPARE(both.ConnectedSignals(), QStringList());
        QCOMPARE(emitter_->ConnectedSignals(), (QStringList{ValueChangedSignal, ValueChangedSignal}));
    }

    void comparesSignaturesAsWritten()
    {
        TestObject late(log_, "late");
        RegisterReceiver(*receiver_, QStringLiteral("ReceiveValue( int )"));
        RegisterEmitter(*emitter_, QStringLiteral("ValueChanged(  int )"));
        QCOMPARE(emitter_->ConnectedSignals(), QStringList{ValueChangedSignal});
        // The receiver was registered with different spaces in the slot's signature. Qt ignores the difference and
        // disconnects the slot. ObjectsConnector does not ignore it, so the receiver stays registered.
        UnregisterReceiver(*receiver_, ReceiveValueSlot);
        QCOMPARE(emitter_->DisconnectedSignals(), QStringList{ValueChangedSignal});
        RegisterEmitter(late, ValueChangedSignal);
        QCOMPARE(late.ConnectedSignals(), QStringList{ValueChangedSignal});
    }

    void recordsPairsThatQtDoesNotConnect_data()
    {
        QTest::addColumn<RejectedPair>("pair");
        for (RejectedPair const& pair : rejectedPairs) {
            QTest::newRow(pair.name) << pair;
        }
    }

    // ObjectsConnector attempts to connect each registered emitter to each registered receiver. Qt logs one warning for
    // each failed attempt. The warnings therefore prove that the objects are registered.
    void recordsPairsThatQtDoesNotConnect()
    {
        QFETCH(RejectedPair, pair);
        QString const signal = QString::fromUtf8(pair.signal);
        QString const slot = QString::fromUtf8(pair.slot);
        TestObject first(log_, "first");
        TestObject second(log_, "second");
        TestObject third(log_, "third");
        TestObject fourth(log_, "fourth");
        QRegularExpression const warning = ConnectWarning(pair.reason);
        RegisterReceiver(first, slot);
        ExpectQtWarning(warning); // second's signal cannot be connected to first's slot
        RegisterEmitter(second, signal);
        ExpectQtWarning(warning); // second's signal cannot be connected to third's slot
        RegisterReceiver(third, slot);
        ExpectQtWarning(warning); // fourth's signal cannot be connected to first's slot
        ExpectQtWarning(warning); // fourth's signal cannot be connected to third's slot
        RegisterEmitter(fourth, signal);
        QCOMPARE(second.ConnectedSignals() + fourth.ConnectedSignals(), QStringList());
    }

    // Each registration of a receiver causes one attempt to connect it. Qt logs one warning for each failed attempt.
    void keepsAnEntryForEachRegistrationOfAReceiver()
    {
        QRegularExpression const unknownSlot = ConnectWarning("No such slot Zelkor::Testing::TestObject::Unknown()");
        QRegularExpression const missingSignal =
            ConnectWarning("No such signal Zelkor::Testing::TestObject::Missing()");
        RegisterReceiver(*receiver_, QStringLiteral("Unknown()"));
        RegisterReceiver(*receiver_, QStringLiteral("1Unknown()"));
        ExpectQtWarning(unknownSlot);
        ExpectQtWarning(unknownSlot);
        RegisterEmitter(*emitter_);
        RegisterEmitter(*receiver_); // no warning: an object is never connected to itself
        ExpectQtWarning(missingSignal);
        ExpectQtWarning(missingSignal);
        RegisterEmitter(*emitter_, QStringLiteral("Missing()"));
    }

    void keepsAnEntryForEachRegistrationOfAnEmitter()
    {
        QRegularExpression const missingSignal =
            ConnectWarning("No such signal Zelkor::Testing::TestObject::Missing()");
        RegisterEmitter(*emitter_, QStringLiteral("Missing()"));
        RegisterEmitter(*emitter_, QStringLiteral("2Missing()"));
        ExpectQtWarning(missingSignal);
        ExpectQtWarning(missingSignal);
        RegisterReceiver(*receiver_);
    }

    void logsAndIgnoresNull_data()
    {
        QTest::addColumn<Call>("call");
        QTest::addColumn<QString>("text");
        QString const sender = QStringLiteral("The sender under \"volume\" is null");
        QString const receiver = QStringLiteral("The receiver under \"volume\" is null");
        QTest::newRow("register an emitter")
            << Call([] { ObjectsConnector::registerEmitter(Id, nullptr, ChangedSignal); }) << sender;
        QTest::newRow("register a receiver")
            << Call([] { ObjectsConnector::registerReceiver(Id, nullptr, ReceiveSlot); }) << receiver;
        QTest::newRow("unregister an emitter")
            << Call([] { ObjectsConnector::unregisterEmitter(Id, nullptr, ChangedSignal); }) << sender;
        QTest::newRow("unregister a receiver")
            << Call([] { ObjectsConnector::unregisterReceiver(Id, nullptr, ReceiveSlot); }) << receiver;
    }

    // A null object must not be registered: every later attempt to connect or disconnect it would cause a Qt warning.
    void logsAndIgnoresNull()
    {
        QFETCH(Call, call);
        QFETCH(QString, text);
        TestObject early(log_, "early");
        RegisterEmitter(early);
        RegisterReceiver(early);
        {
            LogCapture const capture;
            call();
            QCOMPARE(capture.Texts(), QStringList{text});
            LogLine const line = capture.Lines().first();
            QCOMPARE(line.severity, google::GLOG_ERROR);
            QCOMPARE(line.file, QStringLiteral("Util/ObjectsConnector.cpp"));
        }
        TestObject late(log_, "late");
        RegisterEmitter(late);
        RegisterReceiver(late);
        QCOMPARE(EmitChanged(late), QByteArrayList{"early"});
        QCOMPARE(EmitChanged(early), QByteArrayList{"late"});
    }

private:
    template <class... Arguments>
    static bool CallByName(char const* operation, TestObject& object, QString const& signature, Arguments... arguments)
    {
        ObjectsConnector connector(nullptr);
        return QMetaObject::invokeMethod(&connector, operation, Q_ARG(QString, Id), Q_ARG(QObject*, &object),
                                         Q_ARG(QString, signature), arguments...);
    }
};

ZQTUTIL_TEST_MAIN(ObjectsConnectorTest)

#include "ObjectsConnectorTest.moc"
