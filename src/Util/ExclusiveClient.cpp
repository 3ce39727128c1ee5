#include <Util/ExclusiveClient.h>

#include <Base/Throw.h>

#include <stdexcept>

// Design notes
//
// The service and its clients emit signals in the middle of a transfer of the resource. A slot that is connected to one
// of these signals can destroy the client, the service or the next holder of the resource. Therefore, the code uses a
// QPointer for every object that it accesses after it has emitted a signal.

/// While this object exists, the client does not react to clientAboutToBeChanged(). A client creates this object while
/// it releases the resource or emits a signal about a transfer. The client can be destroyed before this object.
class ExclusiveClient::Changing
{
public:
    explicit Changing(ExclusiveClient* changingClient)
        : client_(changingClient)
    {
        client_->changing_ = true;
    }

    ~Changing()
    {
        if (client_) {
            client_->changing_ = false;
        }
    }

    Changing(Changing const&) = delete;
    Changing& operator=(Changing const&) = delete;

private:
    QPointer<ExclusiveClient> const client_;
};

ExclusiveClient::ExclusiveClient(ExclusiveService* boundService, QObject* parent)
    : QObject(parent)
{
    setService(boundService);
    // These connections are made before the application can connect slots to finished() and intercepted(). Slots
    // connected to released() therefore run before the slots connected to finished() and intercepted().
    connect(this, &ExclusiveClient::finished, this, &ExclusiveClient::released);
    connect(this, &ExclusiveClient::intercepted, this, &ExclusiveClient::released);
}

ExclusiveClient::~ExclusiveClient()
{
    setService(nullptr);
}

void ExclusiveClient::setService(ExclusiveService* newService)
{
    QPointer<ExclusiveClient> const self(this);
    QPointer<ExclusiveService> const next(newService);
    if (service_) {
        disconnect(service_, nullptr, this, nullptr);
        if (isInUse()) {
            letGo();
        }
    }
    if (!self) {
        return;
    }
    if (service_) {
        // A slot that ran during letGo() may have set another service and acquired its resource. Release that resource
        // too. Disconnect first, so that the client emits no signals. Otherwise, a slot could acquire the resource
        // again.
        disconnect(service_, nullptr, this, nullptr);
        if (isInUse()) {
            service_->setClient(nullptr);
        }
        if (!self) {
            return;
        }
    }
    service_ = next;
    if (!service_) {
        return;
    }
    connect(service_, &ExclusiveService::clientAboutToBeChanged, this, &ExclusiveClient::onClientAboutToBeChanged);
    connect(service_, &ExclusiveService::clientChanged, this, [this](QObject* client) {
        if (client == this) {
            Q_EMIT acquired();
        }
    });
}

bool ExclusiveClient::isInUse() const
{
    return service_ && service_->currentClient() == this;
}

void ExclusiveClient::use()
{
    QPointer<ExclusiveClient> const self(this);
    QPointer<ExclusiveService> const service(&liveService());
    service->setClient(this);
    // A slot may have set another service before the transfer was complete. This client would then hold the resource of
    // the old service for ever.
    if (self && service && service != service_ && service->currentClient() == this) {
        service->setClient(nullptr);
    }
}

void ExclusiveClient::finalize()
{
    if (liveService().currentClient() == this) {
        letGo();
    }
}

void ExclusiveClient::breakAll()
{
    liveService().setClient(nullptr);
}

void ExclusiveClient::onClientAboutToBeChanged(QObject* from, QObject* to)
{
    if (to == this || changing_) {
        return;
    }
    Changing const changingNow(this);
    if (from == this) {
        Q_EMIT intercepted();
    } else if (to) {
        Q_EMIT otherClientAppeared();
    }
}

ExclusiveService& ExclusiveClient::liveService() const
{
    if (!service_) {
        ZELKOR_THROW(std::logic_error("ExclusiveClient use without service!"));
    }
    return *service_;
}

void ExclusiveClient::letGo()
{
    QPointer<ExclusiveClient> const self(this);
    Changing const changingNow(this);
    service_->setClient(nullptr);
    if (self) {
        Q_EMIT finished();
    }
}
