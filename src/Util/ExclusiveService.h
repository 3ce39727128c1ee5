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
/// **Ownership.** The service does not own the current client. If the client is destroyed, there is no current client.
class ZQTUTIL_EXPORT ExclusiveService : public QObject
{
    Q_OBJECT

public:
    /// Creates a service without a current client. \a parent owns it and can be null.
    explicit ExclusiveService(QObject* parent = nullptr);

    /// Returns the client that holds the resource. Returns null if there is none, and while clientAboutToBeChanged() is
    /// emitted.
    QObject* currentClient() const;

public Q_SLOTS:
    /// Transfers the resource to \a client; null releases it. Does nothing if \a client already holds the resource.
    ///
    /// Slots that are connected to the signals can destroy the service; the transfer then stops. They can destroy
    /// \a client; the service then has no current client.
    ///
    /// Do not call it from a slot that is connected to clientAboutToBeChanged(). The outer call would override the
    /// nested one, and the client of the nested call would not be notified.
    void setClient(QObject* client);

Q_SIGNALS:
    /// Emitted before the resource is transferred from \a from to \a to. Null means no client.
    void clientAboutToBeChanged(QObject* from, QObject* to);

    /// Emitted after the resource was transferred to \a client. Null means no client.
    void clientChanged(QObject* client);

private:
    QPointer<QObject> current_;
};
