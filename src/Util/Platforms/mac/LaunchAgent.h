#pragma once

// Functions that compute names and paths for launch agents. They do not use the macOS API, so that they can be tested
// on every platform.

#include <QtCore/QRegularExpression>
#include <QtCore/QString>

namespace Zelkor::Util
{

/// Returns the file name of the launch agent for the application with the identifier \a identifier. Returns a null
/// string if \a identifier does not consist of four parts that are separated by underscores.
///
/// Example: the file name for "Zelkor_Studio_3.1.2_Agent" is "com.zelkor.studio3.agent.startup.plist".
QString LaunchAgentFileName(QString const& identifier);

/// Returns a regular expression that finds the job label \a label at the end of a line in the output of "launchctl
/// list". \a label is not escaped: its special characters keep their meaning in the regular expression.
QRegularExpression LoadedJobPattern(QString const& label);

/// Returns the path of the bundle that contains the executable at \a executablePath. If the executable is not in a
/// bundle, returns \a executablePath without its last character.
QString BundlePathOf(QString const& executablePath);

} // namespace Zelkor::Util
