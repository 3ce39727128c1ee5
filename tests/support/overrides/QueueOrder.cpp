#include <support/overrides/QueueOrder.h>

#include <QtCore/qglobal.h>

#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define ZQTUTIL_THREAD_SANITIZER
#endif
#endif

#ifdef ZQTUTIL_THREAD_SANITIZER

#include <QtCore/QDeadlineTimer>
#include <QtCore/QEvent>
#include <QtCore/QObject>
#include <QtCore/QThread>

#include <dlfcn.h>
#include <sanitizer/tsan_interface.h>

// Exported by Qt's core for its own test library (qobject_p.h).
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

// data: the receiver, the event, and the result.
bool BeforeDelivery(void** data)
{
    if (static_cast<QEvent*>(data[1])->type() == QEvent::MetaCall) {
        __tsan_acquire(data[0]);
    }
    return false;
}

} // namespace

// Comes before Qt's own function, for the library too. The thread emitted finished() at its end.
bool QThread::wait(QDeadlineTimer deadline)
{
    using Wait = bool (*)(QThread*, QDeadlineTimer);
    static auto const wait = reinterpret_cast<Wait>(dlsym(RTLD_NEXT, "_ZN7QThread4waitE14QDeadlineTimer"));
    bool const hasEnded = wait(this, deadline);
    if (hasEnded) {
        __tsan_acquire(this);
    }
    return hasEnded;
}

void Zelkor::Testing::TellQueueOrderToThreadSanitizer()
{
    static QSignalSpyCallbackSet callbacks{BeforeEmission, nullptr, nullptr, nullptr};
    qt_register_signal_spy_callbacks(&callbacks);
    QInternal::registerCallback(QInternal::EventNotifyCallback, BeforeDelivery);
}

#else

void Zelkor::Testing::TellQueueOrderToThreadSanitizer() {}

#endif
