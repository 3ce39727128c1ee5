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

// Replaces QSettings::setValue() to record the order of the keys. QSettings sorts the keys when it writes the file.
// Therefore, the file does not show the order of the calls.
void QSettings::setValue(QString const& key, QVariant const& value)
{
    static auto const next = Zelkor::Testing::NextFunction<void (*)(QSettings*, QString const&, QVariant const&)>(
        "_ZN9QSettings8setValueERK7QStringRK8QVariant");
    Keys() += key;
    next(this, key, value);
}
