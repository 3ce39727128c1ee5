#pragma once

/// \file
/// Connection of signals and slots by a shared name.

#include <Util/Export.h>

#include <QtCore/QObject>
#include <QtCore/QString>

#include <list>
#include <map>
#include <string>
#include <utility>

namespace Zelkor
{
namespace Util
{

/// The role of emitters in the registry of ObjectsConnector.
extern ZQTUTIL_EXPORT std::string const TYPE_SIGNAL;
/// The role of receivers in the registry of ObjectsConnector.
extern ZQTUTIL_EXPORT std::string const TYPE_SLOT;

/// Connects signals to slots by a shared name, the ID. Every emitter of an ID is connected to every receiver of the
/// same ID. The order of registration does not matter.
///
/// \code
/// ObjectsConnector::registerReceiver(QStringLiteral("volume"), dial, QStringLiteral("setValue(int)"));
/// ObjectsConnector::registerEmitter(QStringLiteral("volume"), slider, QStringLiteral("valueChanged(int)"));
/// \endcode
///
/// From QML: `import Zelkor.Util 1.0`, then `ObjectsConnector.registerEmitter("volume", slider, "valueChanged()")`.
///
/// **Signatures** have the form of `SIGNAL()` and `SLOT()`, with or without the leading digit that these macros add. Qt
/// logs a warning if an object does not have the signal or slot, or if the two do not match. The object is registered
/// anyway.
///
/// **Connections.** An object is never connected to itself, even if it is registered as an emitter and as a receiver of
/// an ID. A connection is queued if the object that is registered *second* requests it. The request of the first one is
/// not stored.
///
/// **Ownership.** The registry does not own the objects, and removes an object that is destroyed. An object whose
/// destruction has begun can be unregistered, but not registered.
///
/// **Threads.** Nothing is locked. Call all functions on one thread, normally the GUI thread, and destroy the
/// registered objects on the same thread.
class ZQTUTIL_EXPORT ObjectsConnector : public QObject
{
    Q_OBJECT

public:
    /// Creates an object for QML, which cannot call static functions without one. \a parent owns it and can be null.
    explicit ObjectsConnector(QObject* parent = nullptr);

    /// Registers an emitter and connects it to all current and future receivers of the same ID.
    ///
    /// \param ID      the shared name
    /// \param sender  the object that emits the signal. If it is null, the call is logged at ERROR and ignored.
    /// \param signal  the signature of the signal
    /// \param queued  true to use queued connections to the receivers that are already registered
    Q_INVOKABLE static void registerEmitter(QString const& ID, QObject* sender, QString const& signal,
                                            bool queued = false);

    /// Registers a receiver and connects it to all current and future emitters of the same ID.
    ///
    /// \param ID        the shared name
    /// \param receiver  the object that has the slot. If it is null, the call is logged at ERROR and ignored.
    /// \param slot      the signature of the slot
    /// \param queued    true to use queued connections from the emitters that are already registered
    Q_INVOKABLE static void registerReceiver(QString const& ID, QObject* receiver, QString const& slot,
                                             bool queued = false);

    /// Disconnects a receiver from all emitters of its ID and removes it, even if it was registered several times.
    ///
    /// \param ID        the shared name
    /// \param receiver  the registered object. If it is null, the call is logged at ERROR and ignored.
    /// \param slot      the signature of the slot
    Q_INVOKABLE static void unregisterReceiver(QString const& ID, QObject* receiver, QString const& slot);

    /// Disconnects an emitter from all receivers of its ID and removes it, even if it was registered several times.
    ///
    /// \param ID      the shared name
    /// \param sender  the registered object. If it is null, the call is logged at ERROR and ignored.
    /// \param signal  the signature of the signal
    Q_INVOKABLE static void unregisterEmitter(QString const& ID, QObject* sender, QString const& signal);

private:
    // Callable through the meta-object since the first release, although it is private.
    Q_INVOKABLE static void registerMetaType(QString const& ID, std::string const& metaType,
                                             std::pair<QObject const*, std::string const> const& metaPair);

    // The entries in the order of registration. The text is the signature as SIGNAL() or SLOT() returns it.
    using Entries = std::list<std::pair<QObject const*, std::string const>>;
    static std::map<QString, std::map<std::string, Entries>> m_metaCollector;
};

} // namespace Util
} // namespace Zelkor
