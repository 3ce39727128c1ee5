#pragma once

/// \file
/// A resource that one user holds at a time.

#include <Util/Export.h>

#include <QtCore/QObject>
#include <QtCore/QPointer>

/// Stands for a resource that only one user may hold at a time: a player, a capture device, a shared panel. The users
/// are ExclusiveClient objects.
///
/// \code
/// ExclusiveService device;
/// ExclusiveClient preview(&device), recorder(&device);
/// recorder.use();   // the recorder has acquired the device
/// preview.use();    // taken over: the recorder is told that it was intercepted
/// \endcode
///
/// **Threads.** The service and its clients are used on one thread, normally the GUI thread.
///
/// **Ownership.** The current client is borrowed; when it is destroyed, there is none.
class ZQTUTIL_EXPORT ExclusiveService : public QObject
{
    Q_OBJECT

public:
    /// A service that nobody holds, owned by \a parent, if any.
    explicit ExclusiveService(QObject* parent = nullptr);

    /// Who holds the resource; null when nobody does, and while clientAboutToBeChanged() is delivered.
    QObject* currentClient() const;

public Q_SLOTS:
    /// Hands the resource over to \a client, or to nobody when it is null; nothing when it holds it already.
    ///
    /// A slot connected to the signals may destroy the service, which ends the hand-over, or \a client, which then gets
    /// nothing.
    void setClient(QObject* client);

Q_SIGNALS:
    /// The resource is about to pass from \a from to \a to; null stands for nobody.
    void clientAboutToBeChanged(QObject* from, QObject* to);

    /// The resource has passed to \a client; null stands for nobody.
    void clientChanged(QObject* client);

private:
    QPointer<QObject> current_;
};
