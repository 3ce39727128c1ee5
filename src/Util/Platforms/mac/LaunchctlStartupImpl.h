#pragma once

// Starts applications at login through launch agents: property lists in the user's folder "Library/LaunchAgents" that
// launchctl loads.

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>

namespace Zelkor::Util
{

/// Writes, loads and unloads the launch agents of the user.
///
/// The object caches a list of the labels and paths of the agents in the user's folder "Library/LaunchAgents".
/// UpdatePlistList() refreshes this list, and AddToStartup() adds new agents to this list. Use an object on one thread
/// at a time.
class LaunchctlStartupImpl
{
public:
    /// Creates an object with an empty list. Does not read the agents in the user's folder.
    LaunchctlStartupImpl();
    ~LaunchctlStartupImpl();

    LaunchctlStartupImpl(LaunchctlStartupImpl const&) = delete;
    LaunchctlStartupImpl& operator=(LaunchctlStartupImpl const&) = delete;

    /// Reads the labels and paths of all agents in the user's folder.
    void UpdatePlistList();

    /// Returns true if launchctl lists the job \a identifier as loaded. Does not use the cached list. Blocks until
    /// launchctl has closed its output.
    bool IsInStartup(QString const& identifier) const;

    /// Returns the labels of the cached agents that are loaded, in alphabetical order. Blocks until launchctl has
    /// closed its output.
    QStringList GetAppsInStartup() const;

    /// Writes the agent \a identifier and starts "launchctl load" without waiting for its result. If the cached list
    /// already contains the agent and the agent's file exists, the file is not written again.
    ///
    /// \param identifier      the identifier of the application; if it does not have four parts and the file must be
    ///                        written, the function logs a message at WARNING and returns false
    /// \param executablePath  the path of the executable; at login, the bundle that contains the executable is opened
    /// \param arguments       the arguments of the executable
    /// \return true if launchctl was started
    bool AddToStartup(QString const& identifier, QString const& executablePath, QStringList const& arguments);

    /// Starts "launchctl unload -w" for the agent \a identifier without waiting for its result. The option "-w" also
    /// prevents loading at later logins. The file of the agent is not removed.
    ///
    /// \return true if the cached list contains the agent and launchctl was started
    bool RemoveFromStartup(QString const& identifier) const;

private:
    class Impl;
    std::unique_ptr<Impl> const impl_;
};

} // namespace Zelkor::Util
