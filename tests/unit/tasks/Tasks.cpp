#include <unit/tasks/Tasks.h>

#include <QtCore/QThread>
#include <QtTest/QTest>

#include <cstddef>

namespace Zelkor::Testing
{

bool WaitUntilEmpty(AsyncService const& service)
{
    return QTest::qWaitFor([&] { return service.empty(); }, TimeoutMs);
}

bool WaitUntilCompleted(AsyncService const& service, Task* task)
{
    return QTest::qWaitFor([&] { return !service.contains(task); }, TimeoutMs);
}

void DeliverQueuedEvents()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

Task* WaitForWorker(AsyncService& service)
{
    Gate reached;
    Task* const last = service.post([&](Reporter*) { reached.Open(); });
    service.run(last);
    reached.Pass();
    return last;
}

std::shared_ptr<void> MakeDestructionLogger(QStringList& destroyed, char const* name)
{
    return {nullptr, [&destroyed, name](std::nullptr_t) {
                bool const onMainThread = QThread::currentThread() == QCoreApplication::instance()->thread();
                destroyed += QString::fromLatin1(name) + QLatin1String(onMainThread ? "" : " on another thread");
            }};
}

} // namespace Zelkor::Testing
