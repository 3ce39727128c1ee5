#pragma once

/// \file
/// The interface that starts applications when the user logs in.

#include <Util/Export.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>

namespace Zelkor
{
namespace Util
{

/// Starts applications when the user logs in.
///
/// An identifier names an application. It has four parts joined by "_": maker, product, version and flavour, for
/// example "Zelkor_Studio_3.1.2_Agent".
///
/// \code
/// auto const launcher = GetAutoLauncherImpl(AutoLauncherImplType::Default);
/// if (!launcher->IsInStartup(identifier)) {
///     launcher->AddToStartup(identifier, QCoreApplication::applicationFilePath(), {QStringLiteral("--hidden")});
/// }
/// \endcode
///
/// A launcher caches the list of the applications that start at login. A new launcher has an empty list.
/// IsInStartup() and GetStartupApplications() refresh the list first. AddToStartup() and RemoveFromStartup() use the
/// cached list, and refresh it only after a success.
///
/// A query blocks until the system has answered; on macOS it runs launchctl. Use a launcher on one thread at a time,
/// normally the GUI thread.
class ZQTUTIL_EXPORT IAutoLauncher
{
public:
    virtual ~IAutoLauncher();

    /// Refreshes the list, then returns true if the application \a identifier starts at login.
    ///
    /// On macOS the function first searches the login items for \a identifier. Then it searches each line of the output
    /// of "launchctl list" for a match at the end. There, \a identifier is a regular expression, so an empty one always
    /// matches.
    virtual bool IsInStartup(QString const& identifier) = 0;

    /// Starts the application \a identifier at every login.
    ///
    /// Uses the cached list and refreshes it only after a success.
    ///
    /// On macOS the function first adds a login item: the helper for \a identifier in the folder
    /// "Contents/Library/LoginItems" of the main bundle. If there is no such helper, or adding it fails, the function
    /// writes a launch agent and starts "launchctl load" without waiting for its result. Only the launch agent uses
    /// \a executablePath and \a arguments.
    ///
    /// \param identifier      the application; if it does not have four parts, no launch agent can be written, which is
    ///                        logged at WARNING
    /// \param executablePath  the path of the executable; on macOS the bundle that contains it is opened
    /// \param arguments       the arguments of the executable
    /// \return true if the login item exists or was added, or if launchctl was started
    virtual bool AddToStartup(QString const& identifier, QString const& executablePath,
                              QStringList const& arguments) = 0;

    /// Stops starting the application \a identifier at login.
    ///
    /// Searches the cached list and refreshes it only after a success. A new launcher therefore finds nothing before
    /// the first query.
    ///
    /// On macOS the function first removes the login item. If there is none, or removing it fails, it starts
    /// "launchctl unload" for the launch agent, loaded or not, without waiting for its result. The file of the launch
    /// agent stays.
    ///
    /// \return true if the login item was removed or launchctl was started; false otherwise, for example if the cached
    ///         list does not contain \a identifier
    virtual bool RemoveFromStartup(QString const& identifier) = 0;

    /// Refreshes the list, then returns the identifiers of the applications that start at login.
    ///
    /// On macOS the result contains the login items of the maker, followed by the labels of all loaded launch agents of
    /// the user, also of other makers. An application that has both appears twice.
    virtual QStringList GetStartupApplications() = 0;
};

/// The implementation that GetAutoLauncherImpl() creates.
enum class AutoLauncherImplType : int {
    Default ///< the implementation for the current system
};

/// Creates a launcher for the current system. Defined on macOS.
///
/// \param type  reserved; every value gives the same implementation
/// \return the new launcher, owned by the caller
ZQTUTIL_EXPORT std::shared_ptr<IAutoLauncher> GetAutoLauncherImpl(AutoLauncherImplType type);

} // namespace Util
} // namespace Zelkor
