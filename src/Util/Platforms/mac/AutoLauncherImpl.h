#pragma once

// Starting at login on macOS: by login items, else by launch agents.

#include <Util/AutoLauncher.h>

namespace Zelkor::Util
{

/// Asks the login items first and the launch agents second. Both are read anew before each question, and after each
/// change that succeeded.
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
