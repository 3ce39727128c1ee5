#include <Util/ObjectsConnector.h>

#include <Base/StackLink.h>
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

/// False after m_metaCollector was destroyed at exit. Registered static objects can be destroyed later than
/// m_metaCollector.
bool registryExists = true;

struct RegistryEnd
{
    ~RegistryEnd() { registryExists = false; }
} const registryEnd;

/// The digits that SLOT() and SIGNAL() put before a signature.
constexpr char SlotCode = '1';
constexpr char SignalCode = '2';

/// Returns true if \a object can be registered or unregistered. Logs at ERROR if \a object is null.
bool IsUsable(QObject const* object, char const* side, QString const& ID)
{
    LOG_IF(ERROR, !object) << "The " << side << " under \"" << QStringToUtf8(ID) << "\" is null";
    return object && registryExists;
}

std::string Coded(char code, QString const& signature)
{
    std::string text = QStringToUtf8(signature);
    return signature.startsWith(QLatin1Char(code)) ? text : code + text;
}

/// Iterates over a copy of the emitters or of the receivers of an ID. The caller connects each of them to one other
/// object, or disconnects each of them from that object.
///
/// A connection calls QObject::connectNotify() of the sender, which an application can override. The override can
/// register, unregister and destroy objects. Therefore, when a registered object is destroyed, a handler of its
/// destroyed() signal removes the object from all running iterations. QPointer cannot be used instead: Qt 5 reads freed
/// memory when a QPointer is created for an object whose destroyed() signal is being delivered.
class Iteration : public StackLink<Iteration>
{
public:
    /// \param entries  the emitters or receivers; they are copied
    /// \param self     the object to connect to them or to disconnect from them
    template <class Entries>
    Iteration(Entries const& entries, QObject const* self)
        : StackLink(innermost_)
        , entries_(entries.begin(), entries.end())
        , self_(self)
    {}

    /// Calls \a visit with the object and the signature of each entry. Skips the entries of the object that was passed
    /// to the constructor as `self`. Stops if that object is destroyed.
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

    /// Removes \a object, which is being destroyed, from all running iterations.
    static void Remove(QObject const* object)
    {
        for (Iteration* iteration = innermost_; iteration; iteration = iteration->Outer()) {
            if (iteration->self_ == object) {
                iteration->self_ = nullptr;
            }
            for (auto& entry : iteration->entries_) {
                if (entry.first == object) {
                    entry.first = nullptr;
                }
            }
        }
    }

private:
    static Iteration* innermost_;

    std::vector<std::pair<QObject const*, std::string>> entries_;
    QObject const* self_;
};

Iteration* Iteration::innermost_ = nullptr;

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
    if (!IsUsable(sender, "sender", ID)) {
        return;
    }
    // Use the copy of ID in the registry: the caller's ID can belong to an object that the iteration destroys.
    auto& [id, roles] = *m_metaCollector.try_emplace(ID).first;
    std::string const codedSignal = Coded(SignalCode, signal);
    QPointer<QObject> const alive(sender); // registerMetaType() connects the destroyed() handler later
    Iteration(roles[TYPE_SLOT], sender).VisitOthers([&](QObject const* receiver, std::string const& codedSlot) {
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
    if (!IsUsable(receiver, "receiver", ID)) {
        return;
    }
    // Use the copy of ID in the registry: the caller's ID can belong to an object that the iteration destroys.
    auto& [id, roles] = *m_metaCollector.try_emplace(ID).first;
    std::string const codedSlot = Coded(SlotCode, slot);
    QPointer<QObject> const alive(receiver); // registerMetaType() connects the destroyed() handler later
    Iteration(roles[TYPE_SIGNAL], receiver).VisitOthers([&](QObject const* sender, std::string const& codedSignal) {
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
    if (!IsUsable(receiver, "receiver", ID)) {
        return;
    }
    std::string const codedSlot = Coded(SlotCode, slot);
    Entries& own = m_metaCollector[ID][TYPE_SLOT];
    Iteration(m_metaCollector[ID][TYPE_SIGNAL], receiver)
        .VisitOthers([&](QObject const* sender, std::string const& codedSignal) {
            disconnect(sender, codedSignal.c_str(), receiver, codedSlot.c_str());
        });
    own.remove({receiver, codedSlot});
}

void ObjectsConnector::unregisterEmitter(QString const& ID, QObject* sender, QString const& signal)
{
    if (!IsUsable(sender, "sender", ID)) {
        return;
    }
    std::string const codedSignal = Coded(SignalCode, signal);
    Entries& own = m_metaCollector[ID][TYPE_SIGNAL];
    Iteration(m_metaCollector[ID][TYPE_SLOT], sender)
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
            Iteration::Remove(metaPair.first);
            if (registryExists) {
                m_metaCollector[ID][metaType].remove(metaPair);
            }
        },
        Qt::DirectConnection);
}

} // namespace Zelkor::Util
