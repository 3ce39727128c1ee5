#include <Util/PropertyTimeSwitcher.h>

#include <QtCore/QMetaObject>

namespace Zelkor::Util
{

namespace
{

bool HasProperty(QObject const& object, QByteArray const& name)
{
    return object.metaObject()->indexOfProperty(name.constData()) >= 0 || object.dynamicPropertyNames().contains(name);
}

} // namespace

PropertyTimeSwitcher::PropertyTimeSwitcher(QByteArray const& name, QVariant const& outside, QObject* parent)
    : QObject(parent)
    , propertyName(name)
    , defaultValue(outside)
{
    if (parent && !HasProperty(*parent, propertyName)) {
        qWarning("PropertyTimeSwitcher: you're trying to control a non-existing property %s of your QObject",
                 propertyName.constData());
    }
}

void PropertyTimeSwitcher::setRange(int from, int to, QVariant const& value)
{
    rangeStart = from;
    rangeEnd = to;
    rangeValue = value;
    updateValue();
}

void PropertyTimeSwitcher::setCurrentTime(int time)
{
    currentTime = time;
    updateValue();
}

void PropertyTimeSwitcher::updateValue()
{
    bool const inRange = rangeStart <= currentTime && currentTime < rangeEnd;
    QVariant const& wanted = inRange ? rangeValue : defaultValue;
    QObject* const controlled = parent();
    if (controlled && controlled->property(propertyName.constData()) != wanted) {
        controlled->setProperty(propertyName.constData(), wanted);
    }
}

} // namespace Zelkor::Util
