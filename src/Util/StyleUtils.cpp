#include <Util/StyleUtils.h>

#include <WidgetKit/WidgetUtils.h>

#include <QtCore/QMetaEnum>
#include <QtCore/QVariant>
#include <QtWidgets/QWidget>

namespace Zelkor::Util
{

namespace
{

constexpr char LevelProperty[] = "Level";

QMetaEnum Levels()
{
    return staticMetaObject.enumerator(staticMetaObject.indexOfEnumerator("MessageLevel"));
}

} // namespace

void ApplyWidgetStyle(QWidget* widget, QString const& value, char const* property)
{
    if (!widget) {
        return;
    }
    widget->setProperty(property, value);
    Widget::Util::repolishWidget(widget);
}

QString GetWidgetStyle(QWidget const* widget, char const* property)
{
    return widget ? widget->property(property).toString() : QString();
}

void ApplyMessageLevel(QWidget* widget, MessageLevel level)
{
    ApplyWidgetStyle(widget, QString::fromUtf8(Levels().valueToKey(static_cast<int>(level))), LevelProperty);
}

MessageLevel GetMessageLevel(QWidget const* widget)
{
    QString const key = GetWidgetStyle(widget, LevelProperty);
    if (key.isEmpty()) {
        return MessageLevel::NoMessage;
    }
    bool known = false;
    int const value = Levels().keyToValue(key.toUtf8().constData(), &known);
    return known ? static_cast<MessageLevel>(value) : MessageLevel::NoMessage;
}

} // namespace Zelkor::Util
