// Runs the operations of exclusive clients and compares their signals with a model. In some steps, slots that are
// connected to the signals run further operations. The model cannot predict such a step. The storm then checks only
// that the services and the clients agree, and begins again with new objects.

#include <storms/Storm.h>

#include <Util/ExclusiveClient.h>
#include <Util/ExclusiveService.h>

#include <QtCore/QStringList>

#include <array>
#include <cstddef>
#include <map>
#include <memory>
#include <stdexcept>
#include <vector>

using Zelkor::Testing::Random;
using Zelkor::Testing::Require;

namespace
{

constexpr std::size_t ServiceCount = 2;
constexpr std::size_t ClientCount = 5;
constexpr std::size_t NoService = ServiceCount;
constexpr std::size_t NoClient = ClientCount;

/// For each client, the names of its signals in the order of emission.
using SignalLog = std::array<QStringList, ClientCount>;

class ExclusiveClientStorm
{
public:
    explicit ExclusiveClientStorm(Random& random)
        : random_(random)
    {
        Restart();
    }

    void Step()
    {
        if (random_.OneIn(20)) {
            slotsOperate_ = true;
            Operate();
            slotsOperate_ = false;
            CheckAgreement();
            Restart();
            return;
        }
        emitted_ = {};
        expected_ = {};
        Operate();
        Require(emitted_ == expected_, "the clients emit the predicted signals");
        CheckHolders();
    }

    void Finish() {}

private:
    void Restart()
    {
        for (auto& client : clients_) {
            client.reset();
        }
        for (std::size_t service = 0; service < ServiceCount; ++service) {
            services_[service] = std::make_unique<ExclusiveService>();
            holders_[service] = NoClient;
        }
        for (std::size_t client = 0; client < ClientCount; ++client) {
            CreateClient(client, random_.Below(ServiceCount + 1));
        }
    }

    ExclusiveService* ServiceOrNull(std::size_t service) const
    {
        return service == NoService ? nullptr : services_[service].get();
    }

    void CreateClient(std::size_t client, std::size_t service)
    {
        clients_[client] = std::make_unique<ExclusiveClient>(ServiceOrNull(service));
        bound_[client] = service;
        ExclusiveClient* const object = clients_[client].get();
        auto const log = [this, client, object](void (ExclusiveClient::*signal)(), char const* name) {
            QObject::connect(object, signal, object, [this, client, name] { OnSignal(client, name); });
        };
        log(&ExclusiveClient::acquired, "acquired");
        log(&ExclusiveClient::released, "released");
        log(&ExclusiveClient::intercepted, "intercepted");
        log(&ExclusiveClient::finished, "finished");
        log(&ExclusiveClient::otherClientAppeared, "otherClientAppeared");
    }

    void OnSignal(std::size_t client, char const* name)
    {
        emitted_[client] += QString::fromLatin1(name);
        if (slotsOperate_ && depth_ < 3 && random_.OneIn(2)) {
            ++depth_;
            Operate();
            --depth_;
        }
    }

    void Operate()
    {
        std::size_t const client = random_.Below(ClientCount);
        switch (random_.Below(20)) {
        case 0:
            return ReplaceClient(client);
        case 1:
            return ReplaceService(random_.Below(ServiceCount));
        case 2:
        case 3:
        case 4:
            return SetService(client, random_.Below(ServiceCount + 1));
        case 5:
        case 6:
        case 7:
            return Finalize(client);
        case 8:
        case 9:
            return BreakAll(client);
        default:
            return Use(client);
        }
    }

    bool IsHolder(std::size_t client) const
    {
        return bound_[client] != NoService && holders_[bound_[client]] == client;
    }

    void Expect(std::size_t client, char const* name) { expected_[client] += QString::fromLatin1(name); }

    void ExpectRelease(std::size_t client, char const* reason)
    {
        if (IsHolder(client)) {
            holders_[bound_[client]] = NoClient;
            Expect(client, "released");
            Expect(client, reason);
        }
    }

    // The following functions update the model before they call the client, because the slots of the client's signals
    // can run other operations.

    void Use(std::size_t client)
    {
        std::size_t const service = bound_[client];
        if (service != NoService && !IsHolder(client)) {
            for (std::size_t other = 0; other < ClientCount; ++other) {
                if (other != client && bound_[other] == service) {
                    IsHolder(other) ? ExpectRelease(other, "intercepted") : Expect(other, "otherClientAppeared");
                }
            }
            holders_[service] = client;
            Expect(client, "acquired");
        }
        Call(client, &ExclusiveClient::use);
    }

    void Finalize(std::size_t client)
    {
        ExpectRelease(client, "finished");
        Call(client, &ExclusiveClient::finalize);
    }

    void BreakAll(std::size_t client)
    {
        std::size_t const service = bound_[client];
        if (service != NoService && holders_[service] != NoClient) {
            ExpectRelease(holders_[service], "intercepted");
        }
        Call(client, &ExclusiveClient::breakAll);
    }

    void Call(std::size_t client, void (ExclusiveClient::*operation)())
    {
        if (!clients_[client]) {
            return; // a slot runs while this client is being destroyed
        }
        bool const hasService = bound_[client] != NoService;
        bool threw = false;
        try {
            (clients_[client].get()->*operation)();
        } catch (std::logic_error const&) {
            threw = true;
        }
        Require(slotsOperate_ || threw != hasService, "operations without a service throw");
    }

    void SetService(std::size_t client, std::size_t service)
    {
        ExpectRelease(client, "finished");
        bound_[client] = service;
        if (clients_[client]) {
            clients_[client]->setService(ServiceOrNull(service));
        }
    }

    void ReplaceClient(std::size_t client)
    {
        ExpectRelease(client, "finished");
        clients_[client].reset();
        CreateClient(client, random_.Below(ServiceCount + 1));
    }

    void ReplaceService(std::size_t service)
    {
        holders_[service] = NoClient;
        for (std::size_t& bound : bound_) {
            bound = bound == service ? NoService : bound;
        }
        services_[service] = std::make_unique<ExclusiveService>();
    }

    void CheckHolders() const
    {
        for (std::size_t service = 0; service < ServiceCount; ++service) {
            std::size_t const holder = holders_[service];
            Require(services_[service]->currentClient() == (holder == NoClient ? nullptr : clients_[holder].get()),
                    "the predicted client holds the resource");
        }
        for (std::size_t client = 0; client < ClientCount; ++client) {
            Require(clients_[client]->isInUse() == IsHolder(client), "only the holder is in use");
        }
    }

    void CheckAgreement() const
    {
        for (auto const& service : services_) {
            int holders = 0;
            for (auto const& client : clients_) {
                holders += client->isInUse() && service->currentClient() == client.get();
            }
            Require(holders == (service->currentClient() ? 1 : 0), "the current client of a service is in use");
        }
    }

    Random& random_;
    std::array<std::size_t, ClientCount> bound_{};    // the model: the index of the service of each client
    std::array<std::size_t, ServiceCount> holders_{}; // the model: the index of the holder of each service
    SignalLog emitted_;
    SignalLog expected_;
    bool slotsOperate_ = false;
    int depth_ = 0;
    std::array<std::unique_ptr<ExclusiveService>, ServiceCount> services_;
    std::array<std::unique_ptr<ExclusiveClient>, ClientCount> clients_;
};

} // namespace

int main(int argc, char** argv)
{
    return Zelkor::Testing::RunStorm<ExclusiveClientStorm>(argc, argv);
}
