#pragma once

#include <QtCore/QStringList>

namespace Zelkor::Testing
{

/// Returns the keys passed to QSettings::setValue() since the last call, in order. For programs that link
/// SettingsKeys.cpp.
QStringList TakeSettingsKeys();

} // namespace Zelkor::Testing
