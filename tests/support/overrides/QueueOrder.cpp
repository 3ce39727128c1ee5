// Replaces QThread::wait() under the thread sanitizer: Qt has no hook there, and a suppression would hide real races.

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

// Declared in the private header qobject_p.h. Qt's core library exports the function for Qt's test library.
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

// data contains the receiver, the event and the result.
bool BeforeDelivery(void** data)
{
    if (static_cast<QEvent*>(data[1])->type() == QEvent::MetaCall) {
        __tsan_acquire(data[0]);
    }
    return false;
}

} // namespace

// The thread emits finished() last, so BeforeEmission() has released the same object.
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
