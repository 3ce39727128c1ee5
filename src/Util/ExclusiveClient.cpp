#include <Util/ExclusiveClient.h>

#include <Base/Throw.h>

#include <stdexcept>

/// The time during which a client itself drives a change, and so does not react to it. The client may end meanwhile.
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
    // First of all connections, so that released() is out before the application hears of the reason.
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
        // A slot may have bound another one meanwhile, and be using it. It hears nothing more of that: it might go on
        // so.
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
    liveService().setClient(this);
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
