#pragma once

// Starts applications at login on macOS through login items or launch agents.

#include <Util/AutoLauncher.h>

namespace Zelkor::Util
{

/// Combines login items and launch agents. IsInStartup(), AddToStartup() and RemoveFromStartup() first try the login
/// items. If this fails, these functions try the launch agents. GetStartupApplications() returns the
/// login items, followed by the launch agents.
///
/// The login items and the launch agents are cached in two lists. IsInStartup() and GetStartupApplications() refresh
/// the lists before they use them. AddToStartup() and RemoveFromStartup() use the lists without refreshing them first,
/// and refresh them after a successful change.
class AutoLauncherImpl : public virtual IAutoLauncher
{
public:
    AutoLauncherImpl();
    ~AutoLauncherImpl() override;

    AutoLauncherImpl(AutoLauncherImpl const&) = delete;
    AutoLauncherImpl& operator=(AutoLauncherImpl const&) = delete;

    bool IsInStartup(QString const& identifier) override;
    bool AddToStartup(QString const& identifier, QString const& executablePath, QStringList const& arguments) override;
    bool RemoveFromStartup(QString const& identifier) override;
    QStringList GetStartupApplications() override;

private:
    class Impl;
    std::unique_ptr<Impl> const impl_;
};

} // namespace Zelkor::Util
