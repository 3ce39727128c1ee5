#include <Util/ObjectsConnector.h>

#include <Util/StringUtils.h>

#include <QtCore/QPointer>

#include <glog/logging.h>

#include <utility>
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

bool CanServe(QObject const* object, char const* side, QString const& ID)
{
    LOG_IF(ERROR, !object) << "The " << side << " under \"" << QStringToUtf8(ID) << "\" is null";
    return object && registryIsThere;
}

std::string Coded(char code, QString const& signature)
{
    std::string text = QStringToUtf8(signature);
    return signature.startsWith(QLatin1Char(code)) ? text : code + text;
}

/// A walk over the entries of one side, on behalf of an object of the other.
///
/// Qt tells an object of its connections (QObject::connectNotify()), which may then change the registry and end
/// objects: the walk goes over the entries as they were at first, without those whose object has ended. Guarded
/// pointers would not do: Qt makes none of an object whose `destroyed()` is being delivered.
class Walk
{
public:
    template <class Entries>
    Walk(Entries const& entries, QObject const* self)
        : entries_(entries.begin(), entries.end())
        , self_(self)
        , outer_(std::exchange(innermost_, this))
    {}
    ~Walk() { innermost_ = outer_; }
    Q_DISABLE_COPY_MOVE(Walk)

    /// Calls \a visit with the object and the signature of each entry but those of the object that the walk is for, as
    /// long as that lives.
    template <class Visit>
    void VisitOthers(Visit const& visit) const
    {
        QObject const* const self = self_;
        for (auto const& [object, codedSignature] : entries_) {
            if (!self_) {
                return;
            }
            if (object && object != self) {
                visit(object, codedSignature);
            }
        }
    }

    /// Takes \a object, which ends, out of all walks that are under way.
    static void TakeOut(QObject const* object)
    {
        for (Walk* walk = innermost_; walk; walk = walk->outer_) {
            if (walk->self_ == object) {
                walk->self_ = nullptr;
            }
            for (auto& entry : walk->entries_) {
                if (entry.first == object) {
                    entry.first = nullptr;
                }
            }
        }
    }

private:
    std::vector<std::pair<QObject const*, std::string>> entries_;
    QObject const* self_;
    Walk* const outer_;
    static Walk* innermost_;
};

Walk* Walk::innermost_ = nullptr;

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
    if (!CanServe(sender, "sender", ID)) {
        return;
    }
    // The registry's own: the caller's may go with what ends during the walk.
    auto& [id, roles] = *m_metaCollector.try_emplace(ID).first;
    std::string const codedSignal = Coded(SignalCode, signal);
    QPointer<QObject> const alive(sender); // no walk hears of its end before it is recorded
    Walk(roles[TYPE_SLOT], sender).VisitOthers([&](QObject const* receiver, std::string const& codedSlot) {
        if (alive) {
            connect(sender, codedSignal.c_str(), receiver, codedSlot.c_str(), UniqueConnection(queued));
        }
    });
    if (alive) {
        registerMetaType(id, TYPE_SIGNAL, {sender, codedSignal});
    }
}

void ObjectsConnector::registerReceiver(QString const& ID, QObject* receiver, QString const& slot, bool queued)
{
    if (!CanServe(receiver, "receiver", ID)) {
        return;
    }
    // The registry's own: the caller's may go with what ends during the walk.
    auto& [id, roles] = *m_metaCollector.try_emplace(ID).first;
    std::string const codedSlot = Coded(SlotCode, slot);
    QPointer<QObject> const alive(receiver); // no walk hears of its end before it is recorded
    Walk(roles[TYPE_SIGNAL], receiver).VisitOthers([&](QObject const* sender, std::string const& codedSignal) {
        if (alive) {
            connect(sender, codedSignal.c_str(), receiver, codedSlot.c_str(), UniqueConnection(queued));
        }
    });
    if (alive) {
        registerMetaType(id, TYPE_SLOT, {receiver, codedSlot});
    }
}

void ObjectsConnector::unregisterReceiver(QString const& ID, QObject* receiver, QString const& slot)
{
    if (!CanServe(receiver, "receiver", ID)) {
        return;
    }
    std::string const codedSlot = Coded(SlotCode, slot);
    Entries& own = m_metaCollector[ID][TYPE_SLOT];
    Walk(m_metaCollector[ID][TYPE_SIGNAL], receiver)
        .VisitOthers([&](QObject const* sender, std::string const& codedSignal) {
            disconnect(sender, codedSignal.c_str(), receiver, codedSlot.c_str());
        });
    own.remove({receiver, codedSlot});
}

void ObjectsConnector::unregisterEmitter(QString const& ID, QObject* sender, QString const& signal)
{
    if (!CanServe(sender, "sender", ID)) {
        return;
    }
    std::string const codedSignal = Coded(SignalCode, signal);
    Entries& own = m_metaCollector[ID][TYPE_SIGNAL];
    Walk(m_metaCollector[ID][TYPE_SLOT], sender)
        .VisitOthers([&](QObject const* receiver, std::string const& codedSlot) {
            disconnect(sender, codedSignal.c_str(), receiver, codedSlot.c_str());
        });
    own.remove({sender, codedSignal});
}

void ObjectsConnector::registerMetaType(QString const& ID, std::string const& metaType,
                                        std::pair<QObject const*, std::string const> const& metaPair)
{
    m_metaCollector[ID][metaType].push_back(metaPair);
    connect(
        metaPair.first, &QObject::destroyed, metaPair.first,
        [ID, metaType, metaPair] {
            Walk::TakeOut(metaPair.first);
            if (registryIsThere) {
                m_metaCollector[ID][metaType].remove(metaPair);
            }
        },
        Qt::DirectConnection);
}

} // namespace Zelkor::Util
