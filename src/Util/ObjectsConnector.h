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

/// The key of a list of emitters in the private registry of ObjectsConnector. Each shared name has its own list.
extern ZQTUTIL_EXPORT std::string const TYPE_SIGNAL;
/// The key of a list of receivers in the private registry of ObjectsConnector. Each shared name has its own list.
extern ZQTUTIL_EXPORT std::string const TYPE_SLOT;

/// Connects signals to slots by a shared name, the ID. An emitter is an object that is registered with one of its
/// signals. A receiver is an object that is registered with one of its slots. ObjectsConnector connects every emitter
/// to every receiver that is registered under the same ID. Emitters and receivers can be registered in any order.
///
/// \code
/// ObjectsConnector::registerReceiver(QStringLiteral("volume"), dial, QStringLiteral("setValue(int)"));
/// ObjectsConnector::registerEmitter(QStringLiteral("volume"), slider, QStringLiteral("valueChanged(int)"));
/// \endcode
///
/// From QML: `import Zelkor.Util 1.0`, then `ObjectsConnector.registerEmitter("volume", slider, "valueChanged()")`.
///
/// **Signatures** are written as in `SIGNAL()` and `SLOT()`. The leading digit that these macros add is optional. Qt
/// logs a warning if an object does not have the signal or slot, or if the parameters of the signal and the slot do not
/// match. The object is registered nevertheless.
///
/// **Connections.** An object is never connected to itself, even if it is registered both as an emitter and as a
/// receiver under the same ID. An emitter and a receiver are connected as soon as both are registered. Only the
/// argument `queued` of the later registration decides whether the connection is queued.
///
/// **Ownership.** ObjectsConnector does not own the registered objects. When a registered object is destroyed, it is
/// unregistered automatically. An object whose destruction has begun can be unregistered, but not registered.
///
/// **Threads.** ObjectsConnector does not use locks. Call all functions on one thread, normally the GUI thread, and
/// destroy the registered objects on the same thread.
class ZQTUTIL_EXPORT ObjectsConnector : public QObject
{
    Q_OBJECT

public:
    /// Creates an object for QML, which needs an object to call the static functions. \a parent owns the object and can
    /// be null.
    explicit ObjectsConnector(QObject* parent = nullptr);

    /// Registers an emitter under \a ID. Connects it to all receivers that are or will be registered under \a ID.
    ///
    /// \param ID      the shared name
    /// \param sender  the object that emits the signal. If it is null, the call is logged at ERROR and ignored.
    /// \param signal  the signature of the signal
    /// \param queued  true to use queued connections to the receivers that are already registered
    Q_INVOKABLE static void registerEmitter(QString const& ID, QObject* sender, QString const& signal,
                                            bool queued = false);

    /// Registers a receiver under \a ID. Connects it to all emitters that are or will be registered under \a ID.
    ///
    /// \param ID        the shared name
    /// \param receiver  the object that has the slot. If it is null, the call is logged at ERROR and ignored.
    /// \param slot      the signature of the slot
    /// \param queued    true to use queued connections from the emitters that are already registered
    Q_INVOKABLE static void registerReceiver(QString const& ID, QObject* receiver, QString const& slot,
                                             bool queued = false);

    /// Disconnects a slot of a receiver from all emitters that are registered under \a ID. Removes all registrations of
    /// this receiver and slot under \a ID.
    ///
    /// \param ID        the shared name
    /// \param receiver  the registered object. If it is null, the call is logged at ERROR and ignored.
    /// \param slot      the signature of the slot
    Q_INVOKABLE static void unregisterReceiver(QString const& ID, QObject* receiver, QString const& slot);

    /// Disconnects a signal of an emitter from all receivers that are registered under \a ID. Removes all registrations
    /// of this emitter and signal under \a ID.
    ///
    /// \param ID      the shared name
    /// \param sender  the registered object. If it is null, the call is logged at ERROR and ignored.
    /// \param signal  the signature of the signal
    Q_INVOKABLE static void unregisterEmitter(QString const& ID, QObject* sender, QString const& signal);

private:
    // This private function must be Q_INVOKABLE, because applications may call it through the meta-object.
    Q_INVOKABLE static void registerMetaType(QString const& ID, std::string const& metaType,
                                             std::pair<QObject const*, std::string const> const& metaPair);

    // Registered objects and their signatures, in the order of registration. Each signature starts with the digit that
    // the macro SIGNAL() or SLOT() adds. For each ID, m_metaCollector contains up to two of these lists. The list of
    // emitters has the key TYPE_SIGNAL, and the list of receivers has the key TYPE_SLOT.
    using Entries = std::list<std::pair<QObject const*, std::string const>>;
    static std::map<QString, std::map<std::string, Entries>> m_metaCollector;
};

} // namespace Util
} // namespace Zelkor
