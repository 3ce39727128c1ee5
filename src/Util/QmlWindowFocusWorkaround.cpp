#include <Util/QmlWindowFocusWorkaround.h>

#include <QtCore/QEvent>

namespace Zelkor::Util
{

QWidget* findQmlContainer(QWidget* widget)
{
    if (!widget || widget->testAttribute(Qt::WA_NativeWindow)) {
        return widget;
    }
    auto const descendants = widget->findChildren<QWidget*>();
    for (QWidget* const descendant : descendants) {
        if (descendant->testAttribute(Qt::WA_NativeWindow)) {
            return descendant;
        }
    }
    return nullptr;
}

void ApplyQmlWindowFocusWorkaround(QWidget* window, QWidget* widget)
{
    if (!window || !window->isWindow()) {
        return;
    }
    if (QWidget* const container = findQmlContainer(widget)) {
        container->setFocusPolicy(Qt::StrongFocus);
        new QmlWindowFocusWorkaround(window, widget);
    }
}

QmlWindowFocusWorkaround::QmlWindowFocusWorkaround(QWidget* watchedWindow, QWidget* targetWidget)
    : QObject(watchedWindow)
    , window(watchedWindow)
    , target(targetWidget)
{
    window->installEventFilter(this);
}

QmlWindowFocusWorkaround::~QmlWindowFocusWorkaround() = default;

bool QmlWindowFocusWorkaround::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ActivationChange && target && window->isVisible() && window->isActiveWindow()) {
        // Each of them lets others react, and these may destroy the target.
        target->activateWindow();
        if (target) {
            target->raise();
        }
        if (target) {
            target->setFocus(Qt::ActiveWindowFocusReason);
        }
        event->ignore();
    }
    return QObject::eventFilter(watched, event);
}

} // namespace Zelkor::Util
