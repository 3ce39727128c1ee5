#include <unit/connections/ConnectorTestCase.h>

#include <QtTest/QtTest>

#include <utility>

using Zelkor::Util::ObjectsConnector;

namespace Zelkor::Testing
{

void ConnectorTestCase::RegisterEmitter(TestObject& object, QString const& signal)
{
    ObjectsConnector::registerEmitter(Id, &object, signal);
}

void ConnectorTestCase::RegisterReceiver(TestObject& object, QString const& slot)
{
    ObjectsConnector::registerReceiver(Id, &object, slot);
}

void ConnectorTestCase::UnregisterEmitter(TestObject& object, QString const& signal)
{
    ObjectsConnector::unregisterEmitter(Id, &object, signal);
}

void ConnectorTestCase::UnregisterReceiver(TestObject& object, QString const& slot)
{
    ObjectsConnector::unregisterReceiver(Id, &object, slot);
}

QByteArrayList ConnectorTestCase::EmitChanged(TestObject& emitter)
{
    log_.clear();
    Q_EMIT emitter.Changed();
    return std::exchange(log_, {});
}

void ConnectorTestCase::AddEmitterAndReceiverRows(char const* emitterRow, char const* receiverRow)
{
    QTest::addColumn<bool>("isEmitter");
    QTest::newRow(emitterRow) << true;
    QTest::newRow(receiverRow) << false;
}

void ConnectorTestCase::SetUp()
{
    log_.clear();
    emitter_.emplace(log_, "emitter");
    receiver_.emplace(log_, "receiver");
}

void ConnectorTestCase::TearDown()
{
    emitter_.reset();
    receiver_.reset();
}

} // namespace Zelkor::Testing
