#pragma once

/// \file
/// Signals and slots connected by a shared name.

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

/// The role under which emitters of signals are kept.
extern ZQTUTIL_EXPORT std::string const TYPE_SIGNAL;
/// The role under which receivers, with their slots, are kept.
extern ZQTUTIL_EXPORT std::string const TYPE_SLOT;

/// A broker that connects signals to slots by a shared name, the ID: every emitter of an ID is connected to every
/// receiver of it, whichever comes first.
///
/// \code
/// ObjectsConnector::registerReceiver(QStringLiteral("volume"), dial, QStringLiteral("setValue(int)"));
/// ObjectsConnector::registerEmitter(QStringLiteral("volume"), slider, QStringLiteral("valueChanged(int)"));
/// \endcode
///
/// From QML: `import Zelkor.Util 1.0`, then `ObjectsConnector.registerEmitter("volume", slider, "valueChanged()")`.
///
/// **Signatures** are those of `SIGNAL()` and `SLOT()`, with or without the leading digit that these macros put there.
/// Qt prints a warning for a signal or slot that an object does not have, or that do not fit each other; it is
/// recorded all the same.
///
/// An object is never connected to itself, even when it is registered on both sides of an ID. A connection is queued
/// when the side that was registered *second* asked for it; what the first side asked for is not kept.
///
/// **Ownership.** Objects are borrowed, and drop out when they are destroyed. One whose destruction has begun can be
/// unregistered, but not registered.
///
/// **Threads.** Nothing is locked: everything is called on one thread, normally the GUI thread, on which the registered
/// objects are also destroyed.
class ZQTUTIL_EXPORT ObjectsConnector : public QObject
{
    Q_OBJECT

public:
    /// All operations are static; an object is for QML, which calls them through one.
    explicit ObjectsConnector(QObject* parent = nullptr);

    /// Connects the \a signal of \a sender to every receiver of \a ID, those yet to come included; by queued
    /// connections to those that are there when \a queued is true. A null \a sender is logged as an error, here and
    /// below, and not recorded.
    Q_INVOKABLE static void registerEmitter(QString const& ID, QObject* sender, QString const& signal,
                                            bool queued = false);

    /// Connects every emitter of \a ID, those yet to come included, to the \a slot of \a receiver; by queued
    /// connections from those that are there when \a queued is true. A null \a receiver is logged as an error, and not
    /// recorded.
    Q_INVOKABLE static void registerReceiver(QString const& ID, QObject* receiver, QString const& slot,
                                             bool queued = false);

    /// Disconnects every emitter of \a ID from the \a slot of \a receiver, and forgets it, however often it was
    /// registered.
    Q_INVOKABLE static void unregisterReceiver(QString const& ID, QObject* receiver, QString const& slot);

    /// Disconnects the \a signal of \a sender from every receiver of \a ID, and forgets it, however often it was
    /// registered.
    Q_INVOKABLE static void unregisterEmitter(QString const& ID, QObject* sender, QString const& signal);

private:
    Q_INVOKABLE static void registerMetaType(QString const& ID, std::string const& metaType,
                                             std::pair<QObject const*, std::string const> const& metaPair);

    // In the order of registration; the text is the coded signature, as SIGNAL() and SLOT() make it.
    using Entries = std::list<std::pair<QObject const*, std::string const>>;
    static std::map<QString, std::map<std::string, Entries>> m_metaCollector;
};

} // namespace Util
} // namespace Zelkor
