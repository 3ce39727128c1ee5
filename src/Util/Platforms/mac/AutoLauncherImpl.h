#pragma once

// Starts applications at login on macOS, by login items or launch agents.

#include <Util/AutoLauncher.h>

namespace Zelkor::Util
{

/// Combines login items and launch agents. Each operation uses the login items first. It uses the launch agents only if
/// that has failed or found nothing.
///
/// Both lists are refreshed before each query and after each successful change. Changes use the lists that are cached.
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
