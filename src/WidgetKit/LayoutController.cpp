#include <WidgetKit/LayoutController.h>

#include <QtCore/QEvent>
#include <QtWidgets/QLayout>
#include <QtWidgets/QWidget>

namespace Zelkor::Widget
{

namespace
{

bool ChangesLayout(QEvent::Type type)
{
    switch (type) {
    case QEvent::ChildAdded:
    case QEvent::ChildRemoved:
    case QEvent::FontChange:
    case QEvent::LayoutDirectionChange:
    case QEvent::StyleChange:
        return true;
    default:
        return false;
    }
}

} // namespace

LayoutController::LayoutController(QWidget* container)
    : QObject(container)
    , container_(container)
{
    container->installEventFilter(this);
    Invalidate();
}

bool LayoutController::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == container_ && ChangesLayout(event->type())) {
        Invalidate();
    }
    return QObject::eventFilter(watched, event);
}

void LayoutController::Invalidate()
{
    // After invalidate(), Qt reads the default margins and spacings from the style again. Several calls in the same
    // event loop iteration cause only one layout pass.
    if (QLayout* const layout = container_->layout()) {
        layout->invalidate();
    }
}

} // namespace Zelkor::Widget
