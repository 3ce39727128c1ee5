#include <unit/connections/ExclusiveClientTestCase.h>

#include <QtTest/QtTest>

namespace Zelkor::Testing
{
namespace
{

QByteArray NameOf(QObject const* object)
{
    return object ? object->objectName().toLatin1() : QByteArray("nobody");
}

} // namespace

void ExclusiveClientTestCase::SetUp()
{
    service_ = MakeService("");
    otherService_ = MakeService("other service ");
    outsider_ = std::make_unique<QObject>();
    outsider_->setObjectName(QStringLiteral("outsider"));
    a_ = MakeClient("A");
    b_ = MakeClient("B");
    c_ = MakeClient("C");
    log_.clear();
}

void ExclusiveClientTestCase::TearDown()
{
    bool const actionsRan = !action_ && !onAnnounced_ && !onChanged_;
    action_ = nullptr;
    onAnnounced_ = nullptr;
    onChanged_ = nullptr;
    delete a_;
    delete b_;
    delete c_;
    outsider_.reset();
    service_.reset();
    otherService_.reset();
    QVERIFY2(actionsRan, "The expected signal was not emitted");
}

void ExclusiveClientTestCase::Announce(ExclusiveClient* client, QObject* from, QObject* to)
{
    QVERIFY(QMetaObject::invokeMethod(client, "onClientAboutToBeChanged", Q_ARG(QObject*, from), Q_ARG(QObject*, to)));
}

QByteArrayList ExclusiveClientTestCase::ClientsInUse() const
{
    QByteArrayList names;
    for (ExclusiveClient const* const client : {a_.data(), b_.data(), c_.data()}) {
        if (client && client->isInUse()) {
            names += NameOf(client);
        }
    }
    return names;
}

std::unique_ptr<ExclusiveService> ExclusiveClientTestCase::MakeService(QByteArray const& prefix)
{
    auto service = std::make_unique<ExclusiveService>(nullptr);
    QObject::connect(service.get(), &ExclusiveService::clientAboutToBeChanged, this,
                     [this, prefix](QObject* from, QObject* to) {
                         log_ += prefix + "announced " + NameOf(from) + " -> " + NameOf(to);
                         RunOnce(onAnnounced_);
                     });
    QObject::connect(service.get(), &ExclusiveService::clientChanged, this, [this, prefix](QObject* client) {
        log_ += prefix + "changed to " + NameOf(client);
        RunOnce(onChanged_);
    });
    return service;
}

ExclusiveClient* ExclusiveClientTestCase::MakeClient(QByteArray const& name)
{
    auto* const client = new ExclusiveClient(service_.get(), nullptr);
    client->setObjectName(QString::fromLatin1(name));
    auto const logSignal = [this, client, &name](void (ExclusiveClient::*signal)(), char const* signalName) {
        QObject::connect(client, signal, this, [this, entry = name + ' ' + signalName] { log_ += entry; });
    };
    // The constructor of the client has already connected finished() and intercepted() to released(). Qt activates the
    // connections of a signal in the order of their creation. Therefore, the log contains "released" before "finished"
    // or "intercepted".
    logSignal(&ExclusiveClient::finished, "finished");
    logSignal(&ExclusiveClient::intercepted, "intercepted");
    logSignal(&ExclusiveClient::acquired, "acquired");
    logSignal(&ExclusiveClient::otherClientAppeared, "otherClientAppeared");
    logSignal(&ExclusiveClient::released, "released");
    return client;
}

void ExclusiveClientTestCase::RunOnce(Action& action)
{
    if (Action const pending = std::exchange(action, nullptr)) {
        pending();
    }
}

} // namespace Zelkor::Testing
