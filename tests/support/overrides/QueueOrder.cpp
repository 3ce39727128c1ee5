// Replaces QThread::wait() in builds with the thread sanitizer. The replacement informs the thread sanitizer that a
// thread has finished. Qt offers no hook for this purpose. A suppression would hide real data races.

#include <support/overrides/QueueOrder.h>

#include <QtCore/qglobal.h>

#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define ZQTUTIL_THREAD_SANITIZER
#endif
#endif

#ifdef ZQTUTIL_THREAD_SANITIZER

#include <support/overrides/NextFunction.h>

#include <QtCore/QDeadlineTimer>
#include <QtCore/QEvent>
#include <QtCore/QObject>
#include <QtCore/QThread>

#include <sanitizer/tsan_interface.h>

// The following struct and function are declared in Qt's private header qobject_p.h. QtCore exports the function
// because QtTest uses it.
struct QSignalSpyCallbackSet
{
    using BeginCallback = void (*)(QObject* caller, int index, void** arguments);
    using EndCallback = void (*)(QObject* caller, int index);
    BeginCallback signalBegin;
    BeginCallback slotBegin;
    EndCallback signalEnd;
    EndCallback slotEnd;
};
Q_CORE_EXPORT void qt_register_signal_spy_callbacks(QSignalSpyCallbackSet* callbacks);

namespace
{

void BeforeEmission(QObject* sender, int, void**)
{
    __tsan_release(sender);
}

// Qt calls this function before it delivers an event. data[0] is the receiver, data[1] is the event, and data[2] points
// to the result of the delivery. Returns false so that Qt delivers the event.
bool BeforeDelivery(void** data)
{
    if (static_cast<QEvent*>(data[1])->type() == QEvent::MetaCall) {
        __tsan_acquire(data[0]);
    }
    return false;
}

} // namespace

// Calls __tsan_acquire() for a thread that has finished. The matching call of __tsan_release() is in BeforeEmission(),
// which runs when the thread emits QThread::finished().
bool QThread::wait(QDeadlineTimer deadline)
{
    static auto const next =
        Zelkor::Testing::NextFunction<bool (*)(QThread*, QDeadlineTimer)>("_ZN7QThread4waitE14QDeadlineTimer");
    bool const hasFinished = next(this, deadline);
    if (hasFinished) {
        __tsan_acquire(this);
    }
    return hasFinished;
}

void Zelkor::Testing::AnnotateQueueOrderForThreadSanitizer()
{
    static QSignalSpyCallbackSet callbacks{BeforeEmission, nullptr, nullptr, nullptr};
    qt_register_signal_spy_callbacks(&callbacks);
    QInternal::registerCallback(QInternal::EventNotifyCallback, BeforeDelivery);
}

#else

void Zelkor::Testing::AnnotateQueueOrderForThreadSanitizer() {}

#endif
