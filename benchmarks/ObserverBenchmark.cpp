// An event published to 1, 10 and 1 000 observers, each of which counts it.
//
// The floor is what a careful user writes first: a vector, walked under one mutex, in which an observer that registers
// or publishes from its call-back blocks for ever. The peers are the signals that a user would pick instead.

#include "Support.h"

#include <Base/EventHandlerList.h>

#include <boost/signals2/signal.hpp>
#include <sigc++/sigc++.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QObject>
#include <QtCore/QString>

#include <mutex>
#include <string>
#include <vector>

namespace Zelkor::Benchmarks
{
namespace
{

class Observer
{
public:
    virtual ~Observer() = default;
    virtual void OnEvent(QString const& uid) = 0;
};

/// What every way tells: it counts.
class Counter : public Observer
{
public:
    void OnEvent(QString const& uid) override { told_ += uid.size(); }

    int Told() const { return told_; }

private:
    int told_ = 0;
};

class Publisher : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void happened(QString const& uid) const;
};

class Receiver : public QObject
{
    Q_OBJECT

public:
    void OnEvent(QString const& uid) { told_ += uid.size(); }

    int Told() const { return told_; }

private:
    int told_ = 0;
};

class EventHandlerListWay
{
public:
    void Add(Counter& counter) { list_.RegisterEventHandler(&counter); }

    void Publish(QString const& uid)
    {
        list_.PerformForEachEventHandler([&uid](Observer* observer) { observer->OnEvent(uid); });
    }

private:
    Core::EventHandlerList<Observer, Core::SyncExecutePolicy> list_;
};

class VectorWay
{
public:
    void Add(Counter& counter) { observers_.push_back(&counter); }

    void Publish(QString const& uid)
    {
        std::lock_guard<std::mutex> const lock(mutex_);
        for (Observer* const observer : observers_) {
            observer->OnEvent(uid);
        }
    }

private:
    std::mutex mutex_;
    std::vector<Observer*> observers_;
};

class QtWay
{
public:
    void Add(Receiver& receiver)
    {
        QObject::connect(&publisher_, &Publisher::happened, &receiver, &Receiver::OnEvent, Qt::DirectConnection);
    }

    void Publish(QString const& uid) { Q_EMIT publisher_.happened(uid); }

private:
    Publisher publisher_;
};

class Signals2Way
{
public:
    void Add(Counter& counter)
    {
        signal_.connect([&counter](QString const& uid) { counter.OnEvent(uid); });
    }

    void Publish(QString const& uid) { signal_(uid); }

private:
    boost::signals2::signal<void(QString const&)> signal_;
};

class SigcWay
{
public:
    void Add(Counter& counter) { signal_.connect(sigc::mem_fun(counter, &Counter::OnEvent)); }

    void Publish(QString const& uid) { signal_.emit(uid); }

private:
    sigc::signal<void, QString const&> signal_;
};

template <class Way, class Told, int Count>
void Publish(benchmark::State& state)
{
    std::vector<Told> observers(Count);
    Way way;
    for (Told& observer : observers) {
        way.Add(observer);
    }
    QString const uid = QStringLiteral("video_trim");
    for (auto _ : state) {
        way.Publish(uid);
    }
    for (Told const& observer : observers) {
        if (observer.Told() != observers.front().Told() || observer.Told() == 0) {
            state.SkipWithError("an observer was not told of everything");
        }
    }
}

template <int Count>
void Register()
{
    std::string const job = "Publish" + std::to_string(Count) + "/";
    benchmark::RegisterBenchmark((job + "EventHandlerList").c_str(), Publish<EventHandlerListWay, Counter, Count>);
    benchmark::RegisterBenchmark((job + "LockedVector").c_str(), Publish<VectorWay, Counter, Count>);
    benchmark::RegisterBenchmark((job + "QtDirect").c_str(), Publish<QtWay, Receiver, Count>);
    benchmark::RegisterBenchmark((job + "Signals2").c_str(), Publish<Signals2Way, Counter, Count>);
    benchmark::RegisterBenchmark((job + "Sigc").c_str(), Publish<SigcWay, Counter, Count>);
}

} // namespace
} // namespace Zelkor::Benchmarks

int main(int argc, char** argv)
{
    QCoreApplication const application(argc, argv);
    Zelkor::Benchmarks::Register<1>();
    Zelkor::Benchmarks::Register<10>();
    Zelkor::Benchmarks::Register<1000>();
    return Zelkor::Benchmarks::RunBenchmarks(argc, argv);
}

#include "ObserverBenchmark.moc"
