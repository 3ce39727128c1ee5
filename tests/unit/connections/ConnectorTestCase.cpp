#include <unit/connections/ConnectorTestCase.h>

#include <QtTest/QtTest>

#include <utility>

using Zelkor::Util::ObjectsConnector;

namespace Zelkor::Testing
{

void ConnectorTestCase::RegisterEmitter(Party& party, QString const& signal)
{
    ObjectsConnector::registerEmitter(Id, &party, signal);
}

void ConnectorTestCase::RegisterReceiver(Party& party, QString const& slot)
{
    ObjectsConnector::registerReceiver(Id, &party, slot);
}

void ConnectorTestCase::UnregisterEmitter(Party& party, QString const& signal)
{
    ObjectsConnector::unregisterEmitter(Id, &party, signal);
}

void ConnectorTestCase::UnregisterReceiver(Party& party, QString const& slot)
{
    ObjectsConnector::unregisterReceiver(Id, &party, slot);
}

QStringList ConnectorTestCase::Heard(Party& party)
{
    Party::log.clear();
    Q_EMIT party.Changed();
    return std::exchange(Party::log, {});
}

QStringList ConnectorTestCase::Words(char const* words)
{
    return QString::fromLatin1(words).split(QLatin1Char(' '));
}

void ConnectorTestCase::AddSides(char const* emitter, char const* receiver)
{
    QTest::addColumn<bool>("isEmitter");
    QTest::newRow(emitter) << true;
    QTest::newRow(receiver) << false;
}

void ConnectorTestCase::SetUp()
{
    Party::log.clear();
    emitter_.emplace("emitter");
    receiver_.emplace("receiver");
}

void ConnectorTestCase::TearDown()
{
    emitter_.reset();
    receiver_.reset();
}

} // namespace Zelkor::Testing
