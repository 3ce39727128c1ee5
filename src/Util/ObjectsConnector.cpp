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

/// Becomes false before the registry m_metaCollector is destroyed at exit. A registered object that is destroyed later
/// must not access the registry.
bool registryExists = true;

struct RegistryEnd
{
    ~RegistryEnd() { registryExists = false; }
} const registryEnd;

/// The digits that the macros SLOT() and SIGNAL() put before the signature of a slot or of a signal.
constexpr char SlotCode = '1';
constexpr char SignalCode = '2';

/// Returns true if \a object can be registered or unregistered: it is not null, and m_metaCollector still exists. Logs
/// at ERROR if \a object is null. The log message contains \a side, which is "sender" or "receiver", and \a ID.
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

/// Iterates over a list of registered emitters or receivers. The iteration uses a copy of the list, because the list
/// can change while the iteration is running.
///
/// QObject::connect() and QObject::disconnect() call the virtual functions connectNotify() and disconnectNotify() of
/// the sender. An override can register, unregister and destroy objects while an iteration is running. When a
/// registered object is destroyed, a handler of its destroyed() signal therefore removes the object from all running
/// iterations.
///
/// QPointer cannot be used instead. In Qt 5, a QPointer must not be created for an object whose destroyed() signal is
/// being delivered, because Qt would read freed memory.
class Iteration : public StackLink<Iteration>
{
public:
    /// \param entries  the registered emitters or receivers; the constructor copies the list
    /// \param self     the object that the caller connects to the registered objects, or disconnects from them
    template <class Entries>
    Iteration(Entries const& entries, QObject const* self)
        : StackLink(innermost_)
        , entries_(entries.begin(), entries.end())
        , self_(self)
    {}

    /// Calls \a visit for each registered object, and passes the object and its signature. Skips the object that was
    /// passed to the constructor as `self`, and objects that have been destroyed. Stops if `self` is destroyed.
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

    /// Returns false if the object that was passed to the constructor as `self` has been destroyed.
    bool SelfExists() const { return self_; }

    /// Removes \a object from all running iterations. Called while \a object is being destroyed.
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

/// Removes an object from all running iterations if the object is destroyed during the lifetime of the guard. Only
/// registered objects are removed without a guard. The unregister functions also accept other objects.
class DestructionGuard
{
public:
    explicit DestructionGuard(QObject const* object)
        : connection_(QObject::connect(
              object, &QObject::destroyed, object, [object] { Iteration::Remove(object); }, Qt::DirectConnection))
    {}

    ~DestructionGuard() { QObject::disconnect(connection_); }

    DestructionGuard(DestructionGuard const&) = delete;
    DestructionGuard& operator=(DestructionGuard const&) = delete;

private:
    QMetaObject::Connection const connection_;
};

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
    // The caller's string ID can be destroyed during the iteration. Therefore, the code below uses id, which is a copy
    // of ID in m_metaCollector.
    auto& [id, roles] = *m_metaCollector.try_emplace(ID).first;
    std::string const codedSignal = Coded(SignalCode, signal);
    // This QPointer becomes null if sender is destroyed during the iteration. The class Iteration does not detect this,
    // because sender is not registered yet.
    QPointer<QObject> const alive(sender);
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
    // The caller's string ID can be destroyed during the iteration. Therefore, the code below uses id, which is a copy
    // of ID in m_metaCollector.
    auto& [id, roles] = *m_metaCollector.try_emplace(ID).first;
    std::string const codedSlot = Coded(SlotCode, slot);
    // This QPointer becomes null if receiver is destroyed during the iteration. The class Iteration does not detect
    // this, because receiver is not registered yet.
    QPointer<QObject> const alive(receiver);
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
    Iteration const emitters(m_metaCollector[ID][TYPE_SIGNAL], receiver);
    DestructionGuard const guard(receiver);
    emitters.VisitOthers([&](QObject const* sender, std::string const& codedSignal) {
        disconnect(sender, codedSignal.c_str(), receiver, codedSlot.c_str());
    });
    // If the receiver was destroyed, keep the list: a new object with the same address may have been registered.
    if (emitters.SelfExists()) {
        own.remove({receiver, codedSlot});
    }
}

void ObjectsConnector::unregisterEmitter(QString const& ID, QObject* sender, QString const& signal)
{
    if (!IsUsable(sender, "sender", ID)) {
        return;
    }
    std::string const codedSignal = Coded(SignalCode, signal);
    Entries& own = m_metaCollector[ID][TYPE_SIGNAL];
    Iteration const receivers(m_metaCollector[ID][TYPE_SLOT], sender);
    DestructionGuard const guard(sender);
    receivers.VisitOthers([&](QObject const* receiver, std::string const& codedSlot) {
        disconnect(sender, codedSignal.c_str(), receiver, codedSlot.c_str());
    });
    // If the sender was destroyed, keep the list: a new object with the same address may have been registered.
    if (receivers.SelfExists()) {
        own.remove({sender, codedSignal});
    }
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
