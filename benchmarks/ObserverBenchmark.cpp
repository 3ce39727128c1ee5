// Measures EventHandlerList: publishes an event, which contains a string, to 1, 10 and 1 000 observers. Each observer
// adds up the lengths of the strings that it receives.
//
// For comparison, the benchmark measures four alternatives:
// - A vector of observers and one mutex. Its time is the lower bound. It is too simple for applications: a deadlock
//   occurs if an observer publishes another event.
// - Three signal libraries.

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

/// Adds up the lengths of the received strings. All implementations use this observer class, except the Qt signal,
/// which uses QtCounter.
class Counter : public Observer
{
public:
    void OnEvent(QString const& uid) override { received_ += uid.size(); }

    int Received() const { return received_; }

private:
    int received_ = 0;
};

class Emitter : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void happened(QString const&) const;
};

/// The observer class for the Qt signal. Does the same as Counter, but is a QObject.
class QtCounter : public QObject
{
    Q_OBJECT

public:
    void OnEvent(QString const& uid) { received_ += uid.size(); }

    int Received() const { return received_; }

private:
    int received_ = 0;
};

class EventHandlerListPublisher
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

class VectorPublisher
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

class QtPublisher
{
public:
    void Add(QtCounter& counter)
    {
        QObject::connect(&emitter_, &Emitter::happened, &counter, &QtCounter::OnEvent, Qt::DirectConnection);
    }

    void Publish(QString const& uid) { Q_EMIT emitter_.happened(uid); }

private:
    Emitter emitter_;
};

class Signals2Publisher
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

class SigcPublisher
{
public:
    void Add(Counter& counter) { signal_.connect(sigc::mem_fun(counter, &Counter::OnEvent)); }

    void Publish(QString const& uid) { signal_.emit(uid); }

private:
    sigc::signal<void, QString const&> signal_;
};

template <class Publisher, class CounterType, int Count>
void Publish(benchmark::State& state)
{
    std::vector<CounterType> observers(Count);
    Publisher publisher;
    for (CounterType& observer : observers) {
        publisher.Add(observer);
    }
    QString const uid = QStringLiteral("video_trim");
    for (auto _ : state) {
        publisher.Publish(uid);
    }
    for (CounterType const& observer : observers) {
        if (observer.Received() != observers.front().Received() || observer.Received() == 0) {
            state.SkipWithError("An observer missed an event");
        }
    }
}

template <int Count>
void Register()
{
    std::string const job = "Publish" + std::to_string(Count) + "/";
    benchmark::RegisterBenchmark((job + "EventHandlerList").c_str(),
                                 Publish<EventHandlerListPublisher, Counter, Count>);
    benchmark::RegisterBenchmark((job + "LockedVector").c_str(), Publish<VectorPublisher, Counter, Count>);
    benchmark::RegisterBenchmark((job + "QtDirect").c_str(), Publish<QtPublisher, QtCounter, Count>);
    benchmark::RegisterBenchmark((job + "Signals2").c_str(), Publish<Signals2Publisher, Counter, Count>);
    benchmark::RegisterBenchmark((job + "Sigc").c_str(), Publish<SigcPublisher, Counter, Count>);
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
