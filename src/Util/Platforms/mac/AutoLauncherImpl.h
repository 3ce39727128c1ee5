#pragma once

// Starts applications at login on macOS through login items or launch agents.

#include <Util/AutoLauncher.h>

namespace Zelkor::Util
{

/// Combines login items and launch agents. Each function uses the login items first. IsInStartup(), AddToStartup() and
/// RemoveFromStartup() use the launch agents only if the function of LoginItemStartupImpl has returned false.
///
/// The list of login items and the list of launch agents are refreshed before each query and after each successful
/// change. AddToStartup() and RemoveFromStartup() use the cached lists.
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
