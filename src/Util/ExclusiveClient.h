#pragma once

/// \file
/// A user of a resource that one user holds at a time.

#include <Util/ExclusiveService.h>
#include <Util/Export.h>

#include <QtCore/QObject>
#include <QtCore/QPointer>

/// A user of an ExclusiveService: asks for the resource, and is told when it has acquired it, when another client took
/// it away, and when it let it go.
///
/// | What happens                     | to the holder             | to the others           |
/// |----------------------------------|---------------------------|-------------------------|
/// | use() by a client                | released(), intercepted() | otherClientAppeared(), the new holder acquired() |
/// | finalize(), by the holder        | released(), finished()    |                         |
/// | breakAll(), by anyone            | released(), intercepted() |                         |
/// | setService(), or its destruction | released(), finished()    |                         |
///
/// Slots connected to the signals may destroy the client or the service.
///
/// **Threads.** Used on the thread of its service, normally the GUI thread.
class ZQTUTIL_EXPORT ExclusiveClient : public QObject
{
    Q_OBJECT

public:
    /// A client of \a boundService, which is borrowed and may be null, owned by \a parent, if any.
    explicit ExclusiveClient(ExclusiveService* boundService, QObject* parent = nullptr);

    /// Lets the resource go, as `setService(nullptr)`. What a slot throws then ends the process.
    ~ExclusiveClient() override;

    /// Leaves the service it had, letting the resource go if it holds it, for \a newService, which may be null. What a
    /// slot throws on the way passes through; the service then stays what it was, without its signals.
    void setService(ExclusiveService* newService);

    /// Whether this client holds the resource; false without a service, or when it is gone.
    bool isInUse() const;

public Q_SLOTS:
    /// Takes the resource, from whoever holds it; nothing when it is this client.
    ///
    /// Throws `std::logic_error` ("ExclusiveClient use without service!") without a service, as finalize() and
    /// breakAll() do.
    void use();

    /// Lets the resource go, if this client holds it.
    void finalize();

    /// Takes the resource from whoever holds it, for nobody.
    void breakAll();

Q_SIGNALS:
    /// It has the resource.
    void acquired();
    /// It has the resource no more, whatever the reason; comes right before finished() or intercepted() is delivered to
    /// the application.
    void released();
    /// Another client, or breakAll(), took the resource away.
    void intercepted();
    /// It let the resource go itself.
    void finished();
    /// Another client takes the resource, and this one did not hold it.
    void otherClientAppeared();

protected Q_SLOTS:
    /// The service's announcement that the resource passes \a from one client \a to another.
    void onClientAboutToBeChanged(QObject* from, QObject* to);

private:
    class Changing;

    ExclusiveService& liveService() const;
    void letGo();

    QPointer<ExclusiveService> service_;
    bool changing_ = false;
};
