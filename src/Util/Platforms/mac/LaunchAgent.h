#pragma once

// Names and paths for launch agents. These functions do not access the system, so they are tested on every platform.

#include <QtCore/QRegularExpression>
#include <QtCore/QString>

namespace Zelkor::Util
{

/// Returns the file name of the launch agent for the application \a identifier, or a null string if \a identifier does
/// not have four parts joined by "_".
///
/// Example: the file name for "Zelkor_Studio_3.1.2_Agent" is "com.zelkor.studio3.agent.startup.plist".
QString LaunchAgentFileName(QString const& identifier);

/// Returns a pattern that finds the job \a label at the end of a line in the output of "launchctl list". \a label is
/// not escaped, so the pattern treats \a label as a regular expression.
QRegularExpression LoadedJobPattern(QString const& label);

/// Returns the path of the bundle that contains the executable at \a executablePath. If the executable is not in a
/// bundle, returns \a executablePath without its last character.
QString BundlePathOf(QString const& executablePath);

} // namespace Zelkor::Util
