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
    // Margins and spacings that are not set explicitly come from the style. After invalidate(), Qt reads them from the
    // style again. Qt combines the layout requests of one event loop iteration, so several calls of invalidate() cause
    // only one layout pass.
    if (QLayout* const layout = container_->layout()) {
        layout->invalidate();
    }
}

} // namespace Zelkor::Widget
