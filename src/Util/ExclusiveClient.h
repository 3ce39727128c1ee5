#pragma once

/// \file
/// A client of a resource that only one client can hold at a time.

#include <Util/ExclusiveService.h>
#include <Util/Export.h>

#include <QtCore/QObject>
#include <QtCore/QPointer>

/// A client of an ExclusiveService. It acquires and releases the resource, and emits a signal when it acquires or loses
/// it.
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
/// **Threads.** Use it on the thread of its service, normally the GUI thread.
class ZQTUTIL_EXPORT ExclusiveClient : public QObject
{
    Q_OBJECT

public:
    /// Creates a client.
    ///
    /// \param boundService  the service; can be null. The caller keeps ownership.
    /// \param parent        the owner of the client; can be null
    explicit ExclusiveClient(ExclusiveService* boundService, QObject* parent = nullptr);

    /// Releases the resource, see setService(). If a slot throws, the process is terminated.
    ~ExclusiveClient() override;

    /// Changes the service to \a newService, which can be null. Releases the resource of the old service first if this
    /// client holds it.
    ///
    /// Rethrows exceptions of slots. The old service then remains set, but the client no longer reacts to it.
    void setService(ExclusiveService* newService);

    /// Returns true if this client holds the resource. Returns false if it has no service, or if the service was
    /// destroyed.
    bool isInUse() const;

public Q_SLOTS:
    /// Acquires the resource and takes it from another client if necessary. Does nothing if this client already holds
    /// it.
    ///
    /// Throws `std::logic_error` ("ExclusiveClient use without service!") if this client has no service, or if the
    /// service was destroyed.
    void use();

    /// Releases the resource if this client holds it. Throws like use().
    void finalize();

    /// Takes the resource from its current client, which can be this one. Nobody holds it afterwards. Throws like
    /// use().
    void breakAll();

Q_SIGNALS:
    /// Emitted after this client acquired the resource.
    void acquired();
    /// Emitted when this client no longer holds the resource, for any reason. Slots of released() run before the slots
    /// that the application connects to finished() or intercepted().
    void released();
    /// Emitted when another client or breakAll() takes the resource from this client.
    void intercepted();
    /// Emitted after this client released the resource itself.
    void finished();
    /// Emitted when another client acquires the resource while this client does not hold it.
    void otherClientAppeared();

protected Q_SLOTS:
    /// Reacts to ExclusiveService::clientAboutToBeChanged(): the resource is being transferred from \a from to \a to.
    void onClientAboutToBeChanged(QObject* from, QObject* to);

private:
    class Changing;

    ExclusiveService& liveService() const;
    void letGo();

    QPointer<ExclusiveService> service_;
    bool changing_ = false;
};
