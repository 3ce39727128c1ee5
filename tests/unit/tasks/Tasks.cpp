#include <unit/tasks/Tasks.h>

#include <QtCore/QThread>
#include <QtTest/QTest>

#include <cstddef>

namespace Zelkor::Testing
{

bool TurnUntilEmpty(AsyncService const& service)
{
    return QTest::qWaitFor([&] { return service.empty(); }, Patience);
}

bool TurnUntilGone(AsyncService const& service, Task* task)
{
    return QTest::qWaitFor([&] { return !service.contains(task); }, Patience);
}

void DeliverQueued()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

Task* LetWorkerFinish(AsyncService& service)
{
    Gate reached;
    Task* const last = service.post([&](Reporter*) { reached.Open(); });
    service.run(last);
    reached.Pass();
    return last;
}

std::shared_ptr<void> MakeWitness(QStringList& deaths, char const* name)
{
    return {nullptr, [&deaths, name](std::nullptr_t) {
                bool const onMainThread = QThread::currentThread() == QCoreApplication::instance()->thread();
                deaths += QString::fromLatin1(name) + QLatin1String(onMainThread ? "" : " on another thread");
            }};
}

} // namespace Zelkor::Testing
