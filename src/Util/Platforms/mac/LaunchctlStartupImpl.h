#pragma once

// Starts applications at login through launch agents. A launch agent is a property list in the user's folder
// "Library/LaunchAgents". The tool launchctl loads and unloads launch agents.

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>

namespace Zelkor::Util
{

/// Writes, loads and unloads the launch agents of the user.
///
/// The object caches a list of the labels and paths of the agents in the user's folder "Library/LaunchAgents".
/// UpdatePlistList() refreshes this list, and AddToStartup() adds new agents to this list. Do not use an object on
/// several threads at the same time.
class LaunchctlStartupImpl
{
public:
    /// Creates an object with an empty list of agents. Does not read the agents in the user's folder.
    LaunchctlStartupImpl();
    ~LaunchctlStartupImpl();

    LaunchctlStartupImpl(LaunchctlStartupImpl const&) = delete;
    LaunchctlStartupImpl& operator=(LaunchctlStartupImpl const&) = delete;

    /// Replaces the cached list with the labels and paths of all agents in the user's folder.
    void UpdatePlistList();

    /// Returns true if the output of "launchctl list" contains a job with the label \a identifier. Does not use the
    /// cached list. Blocks until launchctl has closed its output.
    bool IsInStartup(QString const& identifier) const;

    /// Returns the labels that are both in the cached list and in the output of "launchctl list". The labels are in
    /// alphabetical order. Blocks until launchctl has closed its output.
    QStringList GetAppsInStartup() const;

    /// Writes the property list of the agent with the label \a identifier, then starts "launchctl load -w" without
    /// waiting for its result. If the cached list already contains the agent and its property list exists, the property
    /// list is not written again.
    ///
    /// Before this function writes a property list, it checks that \a identifier consists of four parts separated by
    /// underscores. If the check fails, the function logs a message at WARNING and returns false.
    ///
    /// \param identifier      the identifier of the application, which is also the label of the agent
    /// \param executablePath  the path of the executable; at login, the bundle that contains the executable is opened
    /// \param arguments       the arguments of the executable
    /// \return true if launchctl was started
    bool AddToStartup(QString const& identifier, QString const& executablePath, QStringList const& arguments);

    /// Starts "launchctl unload -w" for the agent with the label \a identifier, without waiting for the result. The
    /// option "-w" also prevents launchctl from loading the agent at later logins. The property list of the agent is
    /// not removed.
    ///
    /// \return true if the cached list contains the agent and launchctl was started
    bool RemoveFromStartup(QString const& identifier) const;

private:
    class Impl;
    std::unique_ptr<Impl> const impl_;
};

} // namespace Zelkor::Util
