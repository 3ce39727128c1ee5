#include <support/overrides/SettingsKeys.h>

#include <support/overrides/NextFunction.h>

#include <QtCore/QSettings>
#include <QtCore/QVariant>

#include <utility>

namespace
{

QStringList& Keys()
{
    static QStringList keys;
    return keys;
}

} // namespace

QStringList Zelkor::Testing::TakeSettingsKeys()
{
    return std::exchange(Keys(), {});
}

// Replaces QSettings::setValue() to record the keys in the order of the calls. The settings file does not show this
// order, because QSettings sorts the keys when it writes the file.
void QSettings::setValue(QString const& key, QVariant const& value)
{
    static auto const next = Zelkor::Testing::NextFunction<void (*)(QSettings*, QString const&, QVariant const&)>(
        "_ZN9QSettings8setValueERK7QStringRK8QVariant");
    Keys() += key;
    next(this, key, value);
}
