#include <Util/ObjectsConnector.h>

#include <Util/StringUtils.h>

#include <QtCore/QPointer>

#include <glog/logging.h>

#include <vector>

namespace Zelkor::Util
{

std::string const TYPE_SIGNAL = "TYPE_SIGNAL";
std::string const TYPE_SLOT = "TYPE_SLOT";

std::map<QString, std::map<std::string, ObjectsConnector::Entries>> ObjectsConnector::m_metaCollector;

namespace
{

/// Static objects may be registered, and end after the registry.
bool registryIsThere = true;

struct RegistryEnd
{
    ~RegistryEnd() { registryIsThere = false; }
} const registryEnd;

/// What Qt's macros put before a signature.
constexpr char SlotCode = '1';
constexpr char SignalCode = '2';

bool IsMissing(QObject const* object, char const* side, QString const& ID)
{
    LOG_IF(ERROR, !object) << "The " << side << " under \"" << QStringToUtf8(ID) << "\" is null";
    return !object;
}

std::string Coded(char code, QString const& signature)
{
    std::string text = QStringToUtf8(signature);
    return signature.startsWith(QLatin1Char(code)) ? text : code + text;
}

/// Calls \a visit with the object and the signature of each of \a entries but those of \a self, as long as that lives.
///
/// Qt tells an object of its connections (QObject::connectNotify()), which may then change the registry and end
/// objects: the walk goes over the entries as they were at first, without those whose object has ended.
template <class Entries, class Visit>
void VisitOthers(Entries const& entries, QPointer<QObject> const& self, Visit const& visit)
{
    std::vector<std::pair<QPointer<QObject const>, std::string>> const snapshot(entries.begin(), entries.end());
    for (auto const& [object, codedSignature] : snapshot) {
        if (!self) {
            return;
        }
        if (object && object != self) {
            visit(object, codedSignature);
        }
    }
}

Qt::ConnectionType UniqueConnection(bool queued)
{
    return static_cast<Qt::ConnectionType>(Qt::UniqueConnection | (queued ? Qt::QueuedConnection : Qt::AutoConnection));
}

} // namespace

ObjectsConnector::ObjectsConnector(QObject* parent)
    : QObject(parent)
{}

void ObjectsConnector::registerEmitter(QString const& ID, QObject* sender, QString const& signal, bool queued)
{
    if (IsMissing(sender, "sender", ID)) {
        return;
    }
    std::string const codedSignal = Coded(SignalCode, signal);
    QPointer<QObject> const alive(sender);
    VisitOthers(m_metaCollector[ID][TYPE_SLOT], alive, [&](QObject const* receiver, std::string const& codedSlot) {
        connect(sender, codedSignal.c_str(), receiver, codedSlot.c_str(), UniqueConnection(queued));
    });
    if (alive) {
        registerMetaType(ID, TYPE_SIGNAL, {sender, codedSignal});
    }
}

void ObjectsConnector::registerReceiver(QString const& ID, QObject* receiver, QString const& slot, bool queued)
{
    if (IsMissing(receiver, "receiver", ID)) {
        return;
    }
    std::string const codedSlot = Coded(SlotCode, slot);
    QPointer<QObject> const alive(receiver);
    VisitOthers(m_metaCollector[ID][TYPE_SIGNAL], alive, [&](QObject const* sender, std::string const& codedSignal) {
        connect(sender, codedSignal.c_str(), receiver, codedSlot.c_str(), UniqueConnection(queued));
    });
    if (alive) {
        registerMetaType(ID, TYPE_SLOT, {receiver, codedSlot});
    }
}

void ObjectsConnector::unregisterReceiver(QString const& ID, QObject* receiver, QString const& slot)
{
    if (IsMissing(receiver, "receiver", ID)) {
        return;
    }
    std::string const codedSlot = Coded(SlotCode, slot);
    QPointer<QObject> const alive(receiver);
    VisitOthers(m_metaCollector[ID][TYPE_SIGNAL], alive, [&](QObject const* sender, std::string const& codedSignal) {
        disconnect(sender, codedSignal.c_str(), receiver, codedSlot.c_str());
    });
    m_metaCollector[ID][TYPE_SLOT].remove({receiver, codedSlot});
}

void ObjectsConnector::unregisterEmitter(QString const& ID, QObject* sender, QString const& signal)
{
    if (IsMissing(sender, "sender", ID)) {
        return;
    }
    std::string const codedSignal = Coded(SignalCode, signal);
    QPointer<QObject> const alive(sender);
    VisitOthers(m_metaCollector[ID][TYPE_SLOT], alive, [&](QObject const* receiver, std::string const& codedSlot) {
        disconnect(sender, codedSignal.c_str(), receiver, codedSlot.c_str());
    });
    m_metaCollector[ID][TYPE_SIGNAL].remove({sender, codedSignal});
}

void ObjectsConnector::registerMetaType(QString const& ID, std::string const& metaType,
                                        std::pair<QObject const*, std::string const> const& metaPair)
{
    m_metaCollector[ID][metaType].push_back(metaPair);
    connect(
        metaPair.first, &QObject::destroyed, metaPair.first,
        [ID, metaType, metaPair] {
            if (registryIsThere) {
                m_metaCollector[ID][metaType].remove(metaPair);
            }
        },
        Qt::DirectConnection);
}

} // namespace Zelkor::Util
