#pragma once

/// \file
/// A client of a resource that only one client can hold at a time.

#include <Util/ExclusiveService.h>
#include <Util/Export.h>

#include <QtCore/QObject>
#include <QtCore/QPointer>

/// A client of an ExclusiveService. It acquires and releases the resource of the service. It emits signals when it
/// acquires or loses the resource.
///
/// | Event                           | Signals of the previous holder | Signals of the other clients |
/// |---------------------------------|--------------------------------|------------------------------|
/// | a client calls use()            | released(), intercepted()      | see below                    |
/// | the holder calls finalize()     | released(), finished()         | none                         |
/// | any client calls breakAll()     | released(), intercepted()      | none                         |
/// | the holder calls setService()   | released(), finished()         | none                         |
/// | the holder is destroyed         | released(), finished()         | none                         |
///
/// After a call of use(), the new holder emits acquired(). Clients that are neither the previous nor the new holder
/// emit otherClientAppeared().
///
/// Slots that are connected to the signals can destroy the client or the service.
///
/// **Threads.** Use a client on the thread of its service, normally the GUI thread.
class ZQTUTIL_EXPORT ExclusiveClient : public QObject
{
    Q_OBJECT

public:
    /// Creates a client.
    ///
    /// \param boundService  the service; can be null. The caller keeps ownership.
    /// \param parent        the owner of the client; can be null
    explicit ExclusiveClient(ExclusiveService* boundService, QObject* parent = nullptr);

    /// Releases the resource if this client holds it. If a slot throws an exception during the release, the process is
    /// terminated.
    ~ExclusiveClient() override;

    /// Changes the service to \a newService, which can be null. Releases the resource of the old service first if this
    /// client holds it.
    ///
    /// If a slot throws an exception during the release, the exception propagates to the caller. This client then
    /// keeps the old service, but no longer reacts to its signals.
    void setService(ExclusiveService* newService);

    /// Returns true if this client holds the resource. Returns false if this client has no service, or if the service
    /// was destroyed.
    bool isInUse() const;

public Q_SLOTS:
    /// Acquires the resource and takes it from another client if necessary. Does nothing if this client already holds
    /// the resource. If a slot sets another service for this client during the transfer, this client does not keep the
    /// resource of the old service.
    ///
    /// Throws `std::logic_error` ("ExclusiveClient use without service!") if this client has no service, or if the
    /// service was destroyed.
    void use();

    /// Releases the resource if this client holds it. Throws the same exceptions as use().
    void finalize();

    /// Takes the resource from the client that holds it, which can be this client. Afterwards, no client holds the
    /// resource. Throws the same exceptions as use().
    void breakAll();

Q_SIGNALS:
    /// Emitted after this client has acquired the resource.
    void acquired();
    /// Emitted when this client no longer holds the resource, for any reason. Slots connected to released() run before
    /// the slots that the application connects to finished() or intercepted().
    void released();
    /// Emitted when another client or breakAll() takes the resource from this client.
    void intercepted();
    /// Emitted after this client has released the resource in finalize(), in setService() or in its destructor.
    void finished();
    /// Emitted when another client acquires the resource while this client does not hold it.
    void otherClientAppeared();

protected Q_SLOTS:
    /// Slot connected to ExclusiveService::clientAboutToBeChanged(). Emits intercepted() if \a from is this client.
    /// Otherwise, emits otherClientAppeared() if \a to is another client. Does nothing while this client releases the
    /// resource or emits one of these signals.
    void onClientAboutToBeChanged(QObject* from, QObject* to);

private:
    class Changing;

    ExclusiveService& liveService() const;
    void letGo();

    QPointer<ExclusiveService> service_;
    bool changing_ = false;
};
