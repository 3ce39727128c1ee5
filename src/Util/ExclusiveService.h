#pragma once

/// \file
/// A resource that only one client can hold at a time.

#include <Util/Export.h>

#include <QtCore/QObject>
#include <QtCore/QPointer>

/// Represents a resource that only one client can hold at a time, such as a player, a capture device or a shared panel.
/// The clients are ExclusiveClient objects.
///
/// \code
/// ExclusiveService device;
/// ExclusiveClient preview(&device), recorder(&device);
/// recorder.use(); // recorder emits acquired()
/// preview.use();  // recorder emits released() and intercepted(), then preview emits acquired()
/// \endcode
///
/// **Threads.** Use the service and its clients on one thread, normally the GUI thread.
///
/// **Ownership.** The service does not own the current client. If the current client is destroyed, no client
/// holds the resource.
class ZQTUTIL_EXPORT ExclusiveService : public QObject
{
    Q_OBJECT

public:
    /// Creates a service without a current client. \a parent owns the service and can be null.
    explicit ExclusiveService(QObject* parent = nullptr);

    /// Returns the client that holds the resource. Returns null if no client holds the resource, and
    /// also while clientAboutToBeChanged() is being emitted.
    QObject* currentClient() const;

public Q_SLOTS:
    /// Transfers the resource to \a client. If \a client is null, no client holds the resource afterwards. Does nothing
    /// if \a client already holds the resource.
    ///
    /// Slots that are connected to the signals of the service can destroy the service; the transfer then stops. The
    /// slots can also destroy \a client; the service then has no current client.
    ///
    /// Do not call setClient() from a slot that is connected to clientAboutToBeChanged(). The outer call of setClient()
    /// would then replace the client of the inner call. The replaced client would lose the resource without a signal.
    void setClient(QObject* client);

Q_SIGNALS:
    /// Emitted before the resource is transferred from \a from to \a to. \a from is null if no client held the resource
    /// before the transfer. \a to is null if no client will hold the resource after the transfer.
    void clientAboutToBeChanged(QObject* from, QObject* to);

    /// Emitted after the resource has been transferred to \a client. \a client is null if no client holds the resource
    /// any more.
    void clientChanged(QObject* client);

private:
    QPointer<QObject> current_;
};
