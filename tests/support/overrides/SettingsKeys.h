#pragma once

#include <QtCore/QStringList>

namespace Zelkor::Testing
{

/// Returns the keys that were passed to QSettings::setValue() since the previous call of TakeSettingsKeys(), in the
/// order of the calls. A test that uses this function must list SettingsKeys.cpp among its sources.
QStringList TakeSettingsKeys();

} // namespace Zelkor::Testing
