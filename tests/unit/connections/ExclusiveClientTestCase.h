#pragma once

#include <support/TestCase.h>

#include <Util/ExclusiveClient.h>

#include <QtCore/QByteArrayList>
#include <QtCore/QPointer>

#include <functional>
#include <memory>
#include <utility>

namespace Zelkor::Testing
{

/// Exception that slots of the tests throw.
struct SlotError
{};

/// Base class for the tests of ExclusiveClient. Provides two services, three clients of the first service, and an
/// object that is not a client. Logs the signals of all services and clients in the order of their emission.
class ExclusiveClientTestCase : public TestCase
{
    Q_OBJECT

protected:
    void SetUp() override;
    void TearDown() override;

    /// Runs \a action once, after \a client has emitted \a signal and the signal has been logged. The test fails if \a
    /// action does not run.
    template <class Signal>
    void Once(ExclusiveClient* client, Signal signal, std::function<void()> action)
    {
        action_ = std::move(action);
        QObject::connect(client, signal, this, [this] { RunOnce(action_); });
    }

    /// Runs \a action once, when a service emits clientAboutToBeChanged(), before the clients of the service receive
    /// this signal. The test fails if \a action does not run.
    void OnceAnnounced(std::function<void()> action) { onAnnounced_ = std::move(action); }

    /// Runs \a action once, when a service emits clientChanged(), before the clients of the service receive this
    /// signal. The test fails if \a action does not run.
    void OnceChanged(std::function<void()> action) { onChanged_ = std::move(action); }

    /// Directly calls the slot of \a client that handles the signal clientAboutToBeChanged() of its service. Passes two
    /// arguments to the slot: the old client \a from and the new client \a to.
    static void Announce(ExclusiveClient* client, QObject* from, QObject* to);

    /// Returns the names of the clients A, B and C that are in use. Skips destroyed clients.
    QByteArrayList ClientsInUse() const;

    std::unique_ptr<ExclusiveService> service_;
    std::unique_ptr<ExclusiveService> otherService_;
    std::unique_ptr<QObject> outsider_; ///< Uses a service but is not an ExclusiveClient.
    QPointer<ExclusiveClient> a_;
    QPointer<ExclusiveClient> b_;
    QPointer<ExclusiveClient> c_;
    QByteArrayList log_;

private:
    using Action = std::function<void()>;

    std::unique_ptr<ExclusiveService> MakeService(QByteArray const& prefix);
    ExclusiveClient* MakeClient(QByteArray const& name);
    static void RunOnce(Action& action);

    Action action_;
    Action onAnnounced_;
    Action onChanged_;
};

} // namespace Zelkor::Testing
