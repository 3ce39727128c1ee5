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
        // The focus must be given to the widget that the caller specified. Therefore, pass widget and not container.
        new QmlWindowFocusWorkaround(window, widget);
    }
}

QmlWindowFocusWorkaround::QmlWindowFocusWorkaround(QWidget* window, QWidget* target)
    : QObject(window)
    , window_(window)
    , target_(target)
{
    window_->installEventFilter(this);
}

QmlWindowFocusWorkaround::~QmlWindowFocusWorkaround() = default;

bool QmlWindowFocusWorkaround::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ActivationChange && target_ && window_->isVisible() && window_->isActiveWindow()) {
        // Each of these calls can run an event handler that destroys the target. Check target_ again before each call.
        target_->activateWindow();
        if (target_) {
            target_->raise();
        }
        if (target_) {
            target_->setFocus(Qt::ActiveWindowFocusReason);
        }
        event->ignore();
    }
    return QObject::eventFilter(watched, event);
}

} // namespace Zelkor::Util
