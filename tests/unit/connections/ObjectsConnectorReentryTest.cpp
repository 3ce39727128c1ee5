#include <support/TestCase.h>

#include <Util/ObjectsConnector.h>

#include <QtCore/QMetaMethod>
#include <QtCore/QRegularExpression>
#include <QtTest/QtTest>

#include <functional>
#include <memory>

using Zelkor::Util::ObjectsConnector;

/// An emitter that does something when Qt tells it that its signal was connected or disconnected.
class Meddler : public QObject
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
        if (signal == QMetaMethod::fromSignal(&Meddler::Changed)) {
            function();
        }
    }
};

/// Counts calls of its slot.
class Counter : public QObject
{
    Q_OBJECT

public:
    int count = 0;

public Q_SLOTS:
    void Count() { ++count; }
};

namespace
{

QString const Id = QStringLiteral("volume");
QString const Changed = QStringLiteral("Changed()");
QString const Count = QStringLiteral("Count()");

void RegisterEmitter(Meddler& emitter)
{
    ObjectsConnector::registerEmitter(Id, &emitter, Changed);
}

void RegisterReceiver(Counter& receiver)
{
    ObjectsConnector::registerReceiver(Id, &receiver, Count);
}

} // namespace

/// What an object does to the registry from inside the registry's own calls to Qt.
class ObjectsConnectorReentryTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void aReceiverThatIsForgottenMeanwhileIsStillConnected()
    {
        emitter_->onConnected = [this] { ObjectsConnector::unregisterReceiver(Id, second_.get(), Count); };
        RegisterReceiver(*first_);
        RegisterReceiver(*second_);
        RegisterEmitter(*emitter_);

        Q_EMIT emitter_->Changed();
        QCOMPARE(first_->count, 1);
        QCOMPARE(second_->count, 1);
    }

    void aReceiverThatEndsMeanwhileIsLeftOut()
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

    void anEmitterThatEndsMeanwhileIsNotRecorded()
    {
        emitter_->onConnected = [this] { emitter_.reset(); };
        RegisterReceiver(*first_);
        RegisterReceiver(*second_);
        RegisterEmitter(*emitter_);

        Counter late;
        RegisterReceiver(late); // which would be connected to what has ended
        QVERIFY(!emitter_);
    }

    void aReceiverThatEndsWhileItIsRegisteredIsNotRecorded()
    {
        RegisterEmitter(*emitter_);
        emitter_->onConnected = [this] { first_.reset(); };
        RegisterReceiver(*first_);

        Meddler late;
        RegisterEmitter(late);
        QVERIFY(!first_);
    }

    void whoEndsWhenItIsDisconnectedEndsTheWalk()
    {
        RegisterReceiver(*first_);
        RegisterReceiver(*second_);
        RegisterEmitter(*emitter_);
        emitter_->onDisconnected = [this] { emitter_.reset(); };

        ObjectsConnector::unregisterEmitter(Id, emitter_.get(), Changed);
        QVERIFY(!emitter_);
    }

    void anObjectMayBeForgottenAsItEnds_data()
    {
        QTest::addColumn<bool>("isEmitter");
        QTest::addColumn<bool>("hearsFirst");
        for (bool const isEmitter : {false, true}) {
            QTest::addRow("%s, before the registry hears of it", isEmitter ? "emitter" : "receiver")
                << isEmitter << true;
            QTest::addRow("%s, after that", isEmitter ? "emitter" : "receiver") << isEmitter << false;
        }
    }

    void anObjectMayBeForgottenAsItEnds()
    {
        QFETCH(bool, isEmitter);
        QFETCH(bool, hearsFirst);
        QObject* const ending = isEmitter ? static_cast<QObject*>(emitter_.get()) : first_.get();
        auto const hear = [&] {
            connect(ending, &QObject::destroyed, this, [isEmitter](QObject* object) {
                isEmitter ? ObjectsConnector::unregisterEmitter(Id, object, Changed)
                          : ObjectsConnector::unregisterReceiver(Id, object, Count);
            });
        };
        if (hearsFirst) {
            hear();
        }
        RegisterEmitter(*emitter_);
        RegisterReceiver(*first_);
        if (!hearsFirst) {
            hear();
        }

        // By then Qt knows no more than a QObject.
        ExpectQtWarning(
            QRegularExpression(QStringLiteral("No such (signal QObject::Changed|slot QObject::Count)\\(\\)")));
        isEmitter ? emitter_.reset() : first_.reset();

        Meddler lateEmitter;
        Counter lateReceiver;
        RegisterEmitter(lateEmitter);
        RegisterReceiver(lateReceiver);
        Q_EMIT lateEmitter.Changed();
        QCOMPARE(lateReceiver.count, 1);
    }

    void othersMayBeRegisteredAsAnObjectEnds()
    {
        Meddler late;
        connect(first_.get(), &QObject::destroyed, this, [&late] { RegisterEmitter(late); });
        RegisterReceiver(*first_);
        RegisterReceiver(*second_);

        ExpectQtWarning(QRegularExpression(QStringLiteral("No such slot QObject::Count\\(\\)")));
        first_.reset();
        Q_EMIT late.Changed();
        QCOMPARE(second_->count, 1);
    }

protected:
    void SetUp() override
    {
        emitter_ = std::make_unique<Meddler>();
        first_ = std::make_unique<Counter>();
        second_ = std::make_unique<Counter>();
        third_ = std::make_unique<Counter>();
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
    std::unique_ptr<Meddler> emitter_;
    std::unique_ptr<Counter> first_;
    std::unique_ptr<Counter> second_;
    std::unique_ptr<Counter> third_;
};

ZQTUTIL_TEST_MAIN(ObjectsConnectorReentryTest)

#include "ObjectsConnectorReentryTest.moc"
