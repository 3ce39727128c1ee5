#include <support/logs/LogCapture.h>
#include <unit/connections/ConnectorTestCase.h>

#include <Util/ObjectsConnector.h>

#include <QtCore/QMetaMethod>
#include <QtTest/QtTest>

#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

using Zelkor::Testing::LogCapture;
using Zelkor::Testing::LogLine;
using Zelkor::Testing::Party;
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

/// Tells which thread its slot ran on.
class ThreadTeller : public QObject
{
    Q_OBJECT

public:
    std::future<QThread*> Thread() { return promise_.get_future(); }

public Q_SLOTS:
    void Note() { promise_.set_value(QThread::currentThread()); }

private:
    std::promise<QThread*> promise_;
};

namespace
{

constexpr auto Patience = std::chrono::seconds(10);

/// Qt's warning that it does not connect, of which \a reason, in UTF-8, names the class Party by its last name.
QRegularExpression Refusal(char const* reason)
{
    QString const text =
        QStringLiteral("QObject::connect: ") +
        QString::fromUtf8(reason).replace(QLatin1String("Party"), QLatin1String(Party::staticMetaObject.className()));
    return QRegularExpression(QRegularExpression::anchoredPattern(QRegularExpression::escape(text)));
}

struct Operation
{
    char const* signature;
    char const* parameters;
    QMetaMethod::Access access;
    bool isCloned;
};

constexpr Operation operations[] = {
    {"registerEmitter(QString,QObject*,QString,bool)", "ID sender signal queued", QMetaMethod::Public, false},
    {"registerEmitter(QString,QObject*,QString)", "ID sender signal", QMetaMethod::Public, true},
    {"registerReceiver(QString,QObject*,QString,bool)", "ID receiver slot queued", QMetaMethod::Public, false},
    {"registerReceiver(QString,QObject*,QString)", "ID receiver slot", QMetaMethod::Public, true},
    {"unregisterReceiver(QString,QObject*,QString)", "ID receiver slot", QMetaMethod::Public, false},
    {"unregisterEmitter(QString,QObject*,QString)", "ID sender signal", QMetaMethod::Public, false},
    {"registerMetaType(QString,std::string,std::pair<const QObject*,const std::string>)", "ID metaType metaPair",
     QMetaMethod::Private, false},
};

/// Signatures that Qt does not connect, and what it says of class Party, in UTF-8.
struct Misfit
{
    char const* name;
    char const* signal;
    char const* slot;
    char const* warning;
};

constexpr Misfit misfits[] = {
    {"unknown signal", "Unknown()", "Note()", "No such signal Party::Unknown()"},
    {"unknown slot", "Changed()", "Unknown()", "No such slot Party::Unknown()"},
    {"signal beyond ASCII", u8"Ge\u00E4ndert\u4E2D()", "Note()", u8"No such signal Party::Ge\u00E4ndert\u4E2D()"},
    {"slot beyond ASCII", "Changed()", u8"\u00C4ndern()", u8"No such slot Party::\u00C4ndern()"},
    {"percent signs", "%1%()", "Note()", "No such signal Party::%1%()"},
    {"signal coded as a slot", "1Changed()", "Note()", "No such signal Party::1Changed()"},
    {"slot coded as a signal", "Changed()", "2Note()", "No such slot Party::2Note()"},
    {"code after a blank", "Changed()", " 1Note()", "No such slot Party:: 1Note()"},
    {"a slot as the signal", "Note()", "Note()", "No such signal Party::Note()"},
    {"a signal as the slot", "Changed()", "Changed()", "No such slot Party::Changed()"},
    {"signal without parentheses", "Changed", "Note()", "Parentheses expected, signal Party::Changed"},
    {"slot without parentheses", "Changed()", "Note", "Parentheses expected, slot Party::Note"},
    {"empty signal", "", "Note()", "Parentheses expected, signal Party::"},
    {"empty slot", "Changed()", "", "Parentheses expected, slot Party::"},
    {"mismatch", "Changed()", "Set(int)",
     "Incompatible sender/receiver arguments\n        Party::Changed() --> Party::Set(int)"},
};

using Call = void (*)();

} // namespace

Q_DECLARE_METATYPE(Operation)
Q_DECLARE_METATYPE(Misfit)
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

    void namesItsRoles()
    {
        QCOMPARE(Zelkor::Util::TYPE_SIGNAL, std::string("TYPE_SIGNAL"));
        QCOMPARE(Zelkor::Util::TYPE_SLOT, std::string("TYPE_SLOT"));
    }

    void offersItsOperationsThroughTheMetaObject_data()
    {
        QTest::addColumn<Operation>("operation");
        for (Operation const& operation : operations) {
            QTest::newRow(operation.signature) << operation;
        }
    }

    void offersItsOperationsThroughTheMetaObject()
    {
        QFETCH(Operation, operation);
        QMetaObject const& metaObject = ObjectsConnector::staticMetaObject;
        QByteArray const signature = QMetaObject::normalizedSignature(operation.signature);
        QMetaMethod const method = metaObject.method(metaObject.indexOfMethod(signature.constData()));
        QVERIFY(method.isValid());
        QCOMPARE(method.methodType(), QMetaMethod::Method);
        QCOMPARE(method.returnType(), static_cast<int>(QMetaType::Void));
        QCOMPARE(method.parameterNames().join(' '), QByteArray(operation.parameters));
        QCOMPARE(method.access(), operation.access);
        QCOMPARE((method.attributes() & QMetaMethod::Cloned) != 0, operation.isCloned);
    }

    void isCalledByName()
    {
        QVERIFY(CallByName("registerReceiver", *receiver_, Note));
        QVERIFY(CallByName("registerEmitter", *emitter_, Changed));
        QCOMPARE(Heard(*emitter_), Words("receiver"));
        QVERIFY(CallByName("unregisterReceiver", *receiver_, Note));
        QCOMPARE(Heard(*emitter_), QStringList());
        RegisterReceiver(*receiver_);
        QVERIFY(CallByName("unregisterEmitter", *emitter_, Changed));
        QCOMPARE(Heard(*emitter_), QStringList());
    }

    void isCalledByNameWithTheQueueFlag_data() { AddSides("emitter", "receiver"); }

    void isCalledByNameWithTheQueueFlag()
    {
        QFETCH(bool, isEmitter);
        for (bool const queued : {true, false}) {
            isEmitter ? RegisterReceiver(*receiver_) : RegisterEmitter(*emitter_);
            QVERIFY(isEmitter ? CallByName("registerEmitter", *emitter_, Changed, Q_ARG(bool, queued))
                              : CallByName("registerReceiver", *receiver_, Note, Q_ARG(bool, queued)));
            QCOMPARE(Heard(*emitter_).isEmpty(), queued);
            QCoreApplication::sendPostedEvents(&*receiver_);
            QCOMPARE(Party::log.size(), queued ? 1 : 0);
            UnregisterEmitter(*emitter_);
            UnregisterReceiver(*receiver_);
        }
    }

    void recordsAnEmitterByName()
    {
        RegisterReceiver(*receiver_);
        ObjectsConnector connector(nullptr);
        std::pair<QObject const*, std::string const> const entry(&*emitter_, "2Changed()");
        QVERIFY(QMetaObject::invokeMethod(
            &connector, "registerMetaType", Q_ARG(QString, Id), Q_ARG(std::string, Zelkor::Util::TYPE_SIGNAL),
            QGenericArgument("std::pair<const QObject*,const std::string>", static_cast<void const*>(&entry))));
        QCOMPARE(emitter_->Connected(), QStringList());
        Party late("late");
        RegisterReceiver(late);
        QCOMPARE(Heard(*emitter_), Words("late"));
    }

    void recordsByNameWithoutConnecting()
    {
        RegisterEmitter(*emitter_);
        ObjectsConnector connector(nullptr);
        std::pair<QObject const*, std::string const> const entry(&*receiver_, "1Note()");
        QVERIFY(QMetaObject::invokeMethod(
            &connector, "registerMetaType", Q_ARG(QString, Id), Q_ARG(std::string, Zelkor::Util::TYPE_SLOT),
            QGenericArgument("std::pair<const QObject*,const std::string>", static_cast<void const*>(&entry))));
        QCOMPARE(emitter_->Connected(), QStringList());
        Party late("late");
        RegisterEmitter(late);
        QCOMPARE(Heard(late), Words("receiver"));
        receiver_.reset();
        receiver_.emplace("successor");
        Party later("later");
        RegisterEmitter(later);
        QCOMPARE(later.Connected(), QStringList());
    }

    void theRegistryOutlivesTheConnector()
    {
        {
            ObjectsConnector const connector(nullptr);
            ObjectsConnector::registerReceiver(Id, &*receiver_, Note);
        }
        RegisterEmitter(*emitter_);
        QCOMPARE(Heard(*emitter_), Words("receiver"));
    }

    void connectsWhicheverSideComesFirst_data() { AddSides("receiver, then emitter", "emitter, then receiver"); }

    void connectsWhicheverSideComesFirst()
    {
        QFETCH(bool, isEmitter); // the second one
        isEmitter ? RegisterReceiver(*receiver_, Set) : RegisterEmitter(*emitter_, ValueChanged);
        isEmitter ? RegisterEmitter(*emitter_, ValueChanged) : RegisterReceiver(*receiver_, Set);
        QCOMPARE(emitter_->Connected(), QStringList{ValueChanged});
        Q_EMIT emitter_->ValueChanged(7);
        QCOMPARE(Party::log, Words("receiver=7"));
        Q_EMIT receiver_->ValueChanged(8);
        QCOMPARE(Party::log.size(), 1);
    }

    void callsTheReceiversInTheOrderOfTheirRegistration()
    {
        Party second("second");
        Party first("first");
        Party third("third");
        RegisterReceiver(first);
        RegisterReceiver(second);
        RegisterEmitter(*emitter_);
        RegisterReceiver(third);
        QCOMPARE(Heard(*emitter_), Words("first second third"));
    }

    void walksTheEmittersInTheOrderOfTheirRegistration()
    {
        RegisterEmitter(*emitter_, ValueChanged);
        RegisterEmitter(*emitter_, Changed);
        RegisterReceiver(*receiver_);
        QCOMPARE(emitter_->Connected(), (QStringList{ValueChanged, Changed}));
    }

    void connectsEveryEmitterToEveryReceiver()
    {
        Party emitters[] = {{"emitter1"}, {"emitter2"}};
        Party receivers[] = {{"receiver1"}, {"receiver2"}};
        RegisterReceiver(receivers[0]);
        RegisterEmitter(emitters[0]);
        RegisterEmitter(emitters[1]);
        RegisterReceiver(receivers[1]);
        for (Party& emitter : emitters) {
            QCOMPARE(Heard(emitter), Words("receiver1 receiver2"));
        }
    }

    void tellsIdsApart_data()
    {
        QTest::addColumn<QString>("other");
        QTest::newRow("another name") << QStringLiteral("balance");
        QTest::newRow("another case") << QStringLiteral("Volume");
        QTest::newRow("longer") << QStringLiteral("volume ");
        QTest::newRow("empty") << QString();
    }

    void tellsIdsApart()
    {
        QFETCH(QString, other);
        Party foreigner("foreigner");
        RegisterReceiver(*receiver_);
        ObjectsConnector::registerReceiver(other, &foreigner, Note);
        RegisterEmitter(*emitter_);
        QCOMPARE(Heard(*emitter_), Words("receiver"));
        ObjectsConnector::registerEmitter(other, &*emitter_, Changed);
        QCOMPARE(Heard(*emitter_), Words("receiver foreigner"));
        ObjectsConnector::unregisterReceiver(QStringLiteral("never used"), &*receiver_, Note);
        ObjectsConnector::unregisterEmitter(QStringLiteral("never used"), &*emitter_, Changed);
        QCOMPARE(Heard(*emitter_).size(), 2);
        ObjectsConnector::unregisterReceiver(other, &foreigner, Note);
        QCOMPARE(Heard(*emitter_), Words("receiver"));
    }

    void aPairThatTwoIdsShareIsOneConnection()
    {
        QString const other = QStringLiteral("balance");
        RegisterEmitter(*emitter_);
        ObjectsConnector::registerEmitter(other, &*emitter_, Changed);
        RegisterReceiver(*receiver_);
        ObjectsConnector::registerReceiver(other, &*receiver_, Note);
        QCOMPARE(Heard(*emitter_), Words("receiver"));
        ObjectsConnector::unregisterReceiver(other, &*receiver_, Note);
        QCOMPARE(Heard(*emitter_), QStringList());
        Party late("late");
        RegisterEmitter(late);
        QCOMPARE(Heard(late), Words("receiver"));
    }

    void connectsAPairOnceOnly()
    {
        QVERIFY(QObject::connect(&*emitter_, SIGNAL(Changed()), &*receiver_, SLOT(Note())));
        RegisterReceiver(*receiver_);
        RegisterEmitter(*emitter_);
        RegisterEmitter(*emitter_);
        RegisterReceiver(*receiver_);
        ObjectsConnector::registerReceiver(Id, &*receiver_, Note, true);
        QCOMPARE(Heard(*emitter_), Words("receiver"));
        QCoreApplication::sendPostedEvents(&*receiver_);
        QCOMPARE(Party::log, QStringList());
        QCOMPARE(emitter_->Connected(), QStringList{Changed});
    }

    void theSecondSideDecidesAboutTheQueue_data()
    {
        QTest::addColumn<bool>("isEmitter");
        QTest::addColumn<bool>("first");
        QTest::addColumn<bool>("second");
        auto const flag = [](bool queued) { return queued ? "queued " : ""; };
        for (bool const first : {false, true}) {
            for (bool const second : {false, true}) {
                QTest::addRow("%sreceiver, %semitter", flag(first), flag(second)) << true << first << second;
                QTest::addRow("%semitter, %sreceiver", flag(first), flag(second)) << false << first << second;
            }
        }
    }

    void theSecondSideDecidesAboutTheQueue()
    {
        QFETCH(bool, isEmitter); // the second one
        QFETCH(bool, first);
        QFETCH(bool, second);
        if (isEmitter) {
            ObjectsConnector::registerReceiver(Id, &*receiver_, Note, first);
            ObjectsConnector::registerEmitter(Id, &*emitter_, Changed, second);
        } else {
            ObjectsConnector::registerEmitter(Id, &*emitter_, Changed, first);
            ObjectsConnector::registerReceiver(Id, &*receiver_, Note, second);
        }
        QStringList const receiverOnly = Words("receiver");
        QCOMPARE(Heard(*emitter_), second ? QStringList() : receiverOnly);
        QCoreApplication::sendPostedEvents(&*receiver_);
        QCOMPARE(Party::log, second ? receiverOnly : QStringList());
    }

    void callsTheSlotOnTheThreadOfTheReceiver()
    {
        auto const receiver = std::make_unique<ThreadTeller>();
        auto calledOn = receiver->Thread();
        ObjectsConnector::registerReceiver(Id, receiver.get(), Note);
        RegisterEmitter(*emitter_);
        QThread thread;
        receiver->moveToThread(&thread);
        thread.start();
        Q_EMIT emitter_->Changed();
        bool const isReady = calledOn.wait_for(Patience) == std::future_status::ready;
        thread.quit();
        QVERIFY(thread.wait(QDeadlineTimer(Patience)));
        QVERIFY(isReady);
        QCOMPARE(calledOn.get(), &thread);
    }

    void neverConnectsAnObjectToItself_data() { AddSides("receives, then emits", "emits, then receives"); }

    void neverConnectsAnObjectToItself()
    {
        QFETCH(bool, isEmitter); // what comes second
        Party both("both");
        RegisterReceiver(*receiver_);
        RegisterEmitter(*emitter_);
        isEmitter ? RegisterReceiver(both) : RegisterEmitter(both);
        isEmitter ? RegisterEmitter(both) : RegisterReceiver(both);
        QCOMPARE(Heard(both), Words("receiver"));
        QCOMPARE(Heard(*emitter_), Words("receiver both"));
    }

    void takesSignaturesWithAndWithoutTheirCode_data()
    {
        QTest::addColumn<QString>("signal");
        QTest::addColumn<QString>("slot");
        QTest::newRow("coded") << QStringLiteral("2ValueChanged(int)") << QStringLiteral("1Set(int)");
        QTest::newRow("by macros") << QString::fromLatin1(SIGNAL(ValueChanged(int)))
                                   << QString::fromLatin1(SLOT(Set(int)));
        QTest::newRow("not coded") << ValueChanged << Set;
    }

    // One signature, coded or not, is one entry: to unregister it in either form forgets it.
    void takesSignaturesWithAndWithoutTheirCode()
    {
        QFETCH(QString, signal);
        QFETCH(QString, slot);
        RegisterReceiver(*receiver_, slot);
        RegisterEmitter(*emitter_, signal);
        QCOMPARE(emitter_->Connected(), QStringList{ValueChanged});
        UnregisterEmitter(*emitter_, ValueChanged);
        UnregisterReceiver(*receiver_, Set);
        RegisterReceiver(*receiver_, Set);
        RegisterEmitter(*emitter_, ValueChanged);
        UnregisterEmitter(*emitter_, signal);
        UnregisterReceiver(*receiver_, slot);
        Party both("both");
        RegisterReceiver(both, slot);
        RegisterEmitter(both, signal);
        QCOMPARE(both.Connected(), QStringList());
        QCOMPARE(emitter_->Connected(), (QStringList{ValueChanged, ValueChanged}));
    }

    void keepsSignaturesAsTheyWereWritten()
    {
        Party late("late");
        RegisterReceiver(*receiver_, QStringLiteral("Set( int )"));
        RegisterEmitter(*emitter_, QStringLiteral("ValueChanged(  int )"));
        QCOMPARE(emitter_->Connected(), QStringList{ValueChanged});
        // Qt takes the two spellings for one slot and disconnects; the entry has another text, and stays.
        UnregisterReceiver(*receiver_, Set);
        QCOMPARE(emitter_->Disconnected(), QStringList{ValueChanged});
        RegisterEmitter(late, ValueChanged);
        QCOMPARE(late.Connected(), QStringList{ValueChanged});
    }

    void warnsThroughQtAndRecordsAllTheSame_data()
    {
        QTest::addColumn<Misfit>("misfit");
        for (Misfit const& misfit : misfits) {
            QTest::newRow(misfit.name) << misfit;
        }
    }

    void warnsThroughQtAndRecordsAllTheSame()
    {
        QFETCH(Misfit, misfit);
        QString const signal = QString::fromUtf8(misfit.signal);
        QString const slot = QString::fromUtf8(misfit.slot);
        Party first("first");
        Party second("second");
        Party third("third");
        Party fourth("fourth");
        QRegularExpression const once = Refusal(misfit.warning);
        RegisterReceiver(first, slot);
        ExpectQtWarning(once); // for the first receiver
        RegisterEmitter(second, signal);
        ExpectQtWarning(once); // for the emitter that could not be connected
        RegisterReceiver(third, slot);
        ExpectQtWarning(once); // for either receiver
        ExpectQtWarning(once);
        RegisterEmitter(fourth, signal);
        QCOMPARE(second.Connected() + fourth.Connected(), QStringList());
    }

    // Every entry is a connection attempt, and one that fails is a warning.
    void keepsAnEntryForEachRegistration()
    {
        QRegularExpression const unknownSlot = Refusal("No such slot Party::Unknown()");
        QRegularExpression const goneSignal = Refusal("No such signal Party::Gone()");
        RegisterReceiver(*receiver_, QStringLiteral("Unknown()"));
        RegisterReceiver(*receiver_, QStringLiteral("1Unknown()"));
        ExpectQtWarning(unknownSlot);
        ExpectQtWarning(unknownSlot);
        RegisterEmitter(*emitter_);
        RegisterEmitter(*receiver_); // itself: no attempt
        ExpectQtWarning(goneSignal);
        ExpectQtWarning(goneSignal);
        RegisterEmitter(*emitter_, QStringLiteral("Gone()"));
    }

    void keepsAnEntryForEachRegistrationOfAnEmitter()
    {
        QRegularExpression const goneSignal = Refusal("No such signal Party::Gone()");
        RegisterEmitter(*emitter_, QStringLiteral("Gone()"));
        RegisterEmitter(*emitter_, QStringLiteral("2Gone()"));
        ExpectQtWarning(goneSignal);
        ExpectQtWarning(goneSignal);
        RegisterReceiver(*receiver_);
    }

    void complainsAboutNullInTheLogAndRecordsNothing_data()
    {
        QTest::addColumn<Call>("call");
        QTest::addColumn<QString>("text");
        QString const sender = QStringLiteral("The sender under \"volume\" is null");
        QString const receiver = QStringLiteral("The receiver under \"volume\" is null");
        QTest::newRow("register an emitter")
            << Call([] { ObjectsConnector::registerEmitter(Id, nullptr, Changed); }) << sender;
        QTest::newRow("register a receiver")
            << Call([] { ObjectsConnector::registerReceiver(Id, nullptr, Note); }) << receiver;
        QTest::newRow("unregister an emitter")
            << Call([] { ObjectsConnector::unregisterEmitter(Id, nullptr, Changed); }) << sender;
        QTest::newRow("unregister a receiver")
            << Call([] { ObjectsConnector::unregisterReceiver(Id, nullptr, Note); }) << receiver;
    }

    // Qt would warn of every attempt to connect or disconnect nothing.
    void complainsAboutNullInTheLogAndRecordsNothing()
    {
        QFETCH(Call, call);
        QFETCH(QString, text);
        Party early("early");
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
        Party late("late");
        RegisterEmitter(late);
        RegisterReceiver(late);
        QCOMPARE(Heard(late), Words("early"));
        QCOMPARE(Heard(early), Words("late"));
    }

private:
    template <class... Arguments>
    static bool CallByName(char const* operation, Party& party, QString const& signature, Arguments... arguments)
    {
        ObjectsConnector connector(nullptr);
        return QMetaObject::invokeMethod(&connector, operation, Q_ARG(QString, Id), Q_ARG(QObject*, &party),
                                         Q_ARG(QString, signature), arguments...);
    }
};

ZQTUTIL_TEST_MAIN(ObjectsConnectorTest)

#include "ObjectsConnectorTest.moc"
