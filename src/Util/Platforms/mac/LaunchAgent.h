#pragma once

// How launch agents are named and found: what is decided without asking the system.

#include <QtCore/QRegularExpression>
#include <QtCore/QString>

namespace Zelkor::Util
{

/// The name of the property list of the application \a identifier; null when that has not four parts.
///
/// There is no dot between the product and the first number of its version, which keeps its case: the agent of
/// "Zelkor_Studio_3.1.2_Agent" is "com.zelkor.studio3.agent.startup.plist", since the first releases.
QString LaunchAgentFileName(QString const& identifier);

/// What finds the job \a label at the end of a line of launchctl's list. The label is a pattern itself: its dots match
/// anything.
QRegularExpression LoadedJobPattern(QString const& label);

/// The bundle that the executable at \a executablePath stands in. Of a path outside a bundle the last character goes,
/// since Qt counts the position -1 of no match from the end.
QString BundlePathOf(QString const& executablePath);

} // namespace Zelkor::Util
