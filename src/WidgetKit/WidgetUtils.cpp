#include <WidgetKit/WidgetUtils.h>

#include <WidgetKit/LayoutController.h>

#include <QtCore/QVariant>
#include <QtWidgets/QStyle>
#include <QtWidgets/QWidget>

namespace Zelkor::Widget::Util
{

void applyStyleHint(QWidget* widget, QString const& hint)
{
    if (!widget) {
        return;
    }
    widget->setProperty("styleHint", hint);
    repolishWidget(widget);
}

void repolishWidget(QWidget* widget)
{
    if (!widget) {
        return;
    }
    QStyle* const style = widget->style();
    style->unpolish(widget);
    style->polish(widget);
}

QWidget* createSpacer(QWidget* parent, QString const& name)
{
    auto* const spacer = new QWidget(parent);
    spacer->setObjectName(name);
    spacer->setAttribute(Qt::WA_TransparentForMouseEvents);
    return spacer;
}

void installLayoutController(QWidget* container)
{
    if (container && !container->findChild<LayoutController*>(QString(), Qt::FindDirectChildrenOnly)) {
        new LayoutController(container);
    }
}

} // namespace Zelkor::Widget::Util
