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

PropertyTimeSwitcher::PropertyTimeSwitcher(QByteArray const& propertyName, QVariant const& defaultValue,
                                           QObject* parent)
    : QObject(parent)
    , propertyName_(propertyName)
    , defaultValue_(defaultValue)
{
    if (parent && !HasProperty(*parent, propertyName_)) {
        qWarning("PropertyTimeSwitcher: you're trying to control a non-existing property %s of your QObject",
                 propertyName_.constData());
    }
}

void PropertyTimeSwitcher::setRange(int from, int to, QVariant const& value)
{
    rangeStart_ = from;
    rangeEnd_ = to;
    rangeValue_ = value;
    updateValue();
}

void PropertyTimeSwitcher::setCurrentTime(int time)
{
    currentTime_ = time;
    updateValue();
}

void PropertyTimeSwitcher::updateValue()
{
    bool const inRange = rangeStart_ <= currentTime_ && currentTime_ < rangeEnd_;
    QVariant const& wanted = inRange ? rangeValue_ : defaultValue_;
    QObject* const controlled = parent();
    if (controlled && controlled->property(propertyName_.constData()) != wanted) {
        controlled->setProperty(propertyName_.constData(), wanted);
    }
}

} // namespace Zelkor::Util
