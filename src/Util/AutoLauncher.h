#pragma once

/// \file
/// The interface for registering applications that the system starts when the user logs in.

#include <Util/Export.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>

namespace Zelkor
{
namespace Util
{

/// Registers applications that the system starts when the user logs in.
///
/// Each application has an identifier with four parts, joined by "_": vendor, product, version and flavour. An example
/// is "Zelkor_Studio_3.1.2_Agent".
///
/// \code
/// auto const launcher = GetAutoLauncherImpl(AutoLauncherImplType::Default);
/// if (!launcher->IsInStartup(identifier)) {
///     launcher->AddToStartup(identifier, QCoreApplication::applicationFilePath(), {QStringLiteral("--hidden")});
/// }
/// \endcode
///
/// A launcher caches the list of the applications that start at login. The cached list of a new launcher is
/// empty. IsInStartup() and GetStartupApplications() refresh the list first. AddToStartup() and RemoveFromStartup() use
/// the cached list, and refresh the list only if they succeed.
///
/// IsInStartup() and GetStartupApplications() block until the system has returned the list; on macOS they run
/// launchctl. Use a launcher on one thread at a time, normally the GUI thread.
class ZQTUTIL_EXPORT IAutoLauncher
{
public:
    virtual ~IAutoLauncher();

    /// Refreshes the cached list, then returns true if the application \a identifier starts at login.
    ///
    /// On macOS, the function first searches the login items for \a identifier. If no login item has this identifier,
    /// the function searches the output of "launchctl list" for a line that ends with \a identifier. In this second
    /// search, \a identifier is a regular expression. An empty \a identifier therefore always matches.
    virtual bool IsInStartup(QString const& identifier) = 0;

    /// Registers the application \a identifier, so that the system starts it at every login.
    ///
    /// Searches the cached list for an existing registration. Refreshes the list only if this call succeeds.
    ///
    /// On macOS, the function first tries to add a login item, unless the cached list already contains it. The login
    /// item is the helper application for \a identifier in the folder "Contents/Library/LoginItems" of the main bundle.
    /// If the bundle does not contain the helper, or adding the login item fails, the function writes a launch agent.
    /// Then it starts "launchctl load" without waiting for its result. Only the launch agent uses \a executablePath and
    /// \a arguments.
    ///
    /// \param identifier      the identifier of the application; if it does not have four parts, the function cannot
    ///                        write a launch agent and logs this at WARNING
    /// \param executablePath  the path of the executable; on macOS, the launch agent opens the bundle that contains
    ///                        the executable
    /// \param arguments       the arguments of the executable
    /// \return true if the login item exists or was added, or if launchctl was started
    virtual bool AddToStartup(QString const& identifier, QString const& executablePath,
                              QStringList const& arguments) = 0;

    /// Unregisters the application \a identifier, so that the system no longer starts it at login.
    ///
    /// Searches the cached list, and refreshes the list only after a successful removal. The cached list of a new
    /// launcher is empty. Therefore, call IsInStartup() or GetStartupApplications() first.
    ///
    /// On macOS, the function first tries to remove the login item of \a identifier. If this fails, and the cached list
    /// contains a launch agent for \a identifier, the function starts "launchctl unload" without waiting for its
    /// result. It does not check if the launch agent is loaded. It does not remove the file of the launch agent.
    ///
    /// \return true if the login item was removed or launchctl was started; false otherwise, for example if the cached
    ///         list does not contain \a identifier
    virtual bool RemoveFromStartup(QString const& identifier) = 0;

    /// Refreshes the cached list, then returns the identifiers of the applications that start at login.
    ///
    /// On macOS, the result contains the identifiers of Zelkor's login items, followed by the labels of all loaded
    /// launch agents of the user, including agents of other vendors. An application that has both a login item and a
    /// launch agent appears twice.
    virtual QStringList GetStartupApplications() = 0;
};

/// Selects the implementation that GetAutoLauncherImpl() creates.
enum class AutoLauncherImplType : int {
    Default ///< the implementation for the operating system that the program runs on
};

/// Creates a launcher for the current system. This function is defined only on macOS.
///
/// \param type  reserved; every value gives the same implementation
/// \return the new launcher, owned by the caller
ZQTUTIL_EXPORT std::shared_ptr<IAutoLauncher> GetAutoLauncherImpl(AutoLauncherImplType type);

} // namespace Util
} // namespace Zelkor
