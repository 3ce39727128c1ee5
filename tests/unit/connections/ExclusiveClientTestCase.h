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

/// Thrown by slots.
struct SlotError
{};

/// Base of the tests of ExclusiveClient: two services, three clients of the first service, and an object that is no
/// client. The signals of all services and clients are logged in the order of their emission.
class ExclusiveClientTestCase : public TestCase
{
    Q_OBJECT

protected:
    void SetUp() override;
    void TearDown() override;

    /// Runs \a action once, when \a signal of \a client has been logged. The test fails if the action does not run.
    template <class Signal>
    void Once(ExclusiveClient* client, Signal signal, std::function<void()> action)
    {
        action_ = std::move(action);
        QObject::connect(client, signal, this, [this] { RunOnce(action_); });
    }

    /// Runs \a action once, when a service announces a change and before its clients receive the announcement.
    void OnceAnnounced(std::function<void()> action) { onAnnounced_ = std::move(action); }

    /// Runs \a action once, when the client of a service has changed and before the clients receive that signal.
    void OnceChanged(std::function<void()> action) { onChanged_ = std::move(action); }

    /// Calls the protected slot of \a client that receives the announcements of its service.
    static void Announce(ExclusiveClient* client, QObject* from, QObject* to);

    /// Returns the names of the existing clients A, B and C that are in use.
    QByteArrayList ClientsInUse() const;

    std::unique_ptr<ExclusiveService> service_;
    std::unique_ptr<ExclusiveService> otherService_;
    std::unique_ptr<QObject> outsider_; ///< Uses a service without being an ExclusiveClient.
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
