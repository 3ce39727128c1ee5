#pragma once

// Starting at login by launch agents: property lists in the user's folder, which launchctl loads.

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>

namespace Zelkor::Util
{

/// Writes, loads and unloads the launch agents of the user. What it knows of the folder is from the last
/// UpdatePlistList(). One thread.
class LaunchctlStartupImpl
{
public:
    /// Knows no agents yet.
    LaunchctlStartupImpl();
    ~LaunchctlStartupImpl();

    LaunchctlStartupImpl(LaunchctlStartupImpl const&) = delete;
    LaunchctlStartupImpl& operator=(LaunchctlStartupImpl const&) = delete;

    /// Reads the labels of the agents in the user's folder.
    void UpdatePlistList();

    /// Whether launchctl lists the job \a appId as loaded. Blocks until launchctl has answered.
    bool IsInStartup(QString const& appId) const;

    /// The labels of the known agents that are loaded, in order. Blocks until launchctl has answered.
    QStringList GetAppsInStartup() const;

    /// Writes the agent \a appId, unless it is known and its file there, and has launchctl load it, which is not
    /// awaited: at login it opens the bundle of \a executablePath with \a arguments. False when \a appId has not four
    /// parts, which is logged as a warning, and when launchctl cannot be started.
    bool AddToStartup(QString const& appId, QString const& executablePath, QStringList const& arguments);

    /// Has launchctl unload the agent \a appId for good, which is not awaited; its file stays. False when it is not
    /// known, and when launchctl cannot be started.
    bool RemoveFromStartup(QString const& appId) const;

private:
    class Impl;
    std::unique_ptr<Impl> const impl_;
};

} // namespace Zelkor::Util
