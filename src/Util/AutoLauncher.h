#pragma once

/// \file
/// Starting the application when the user logs in.

#include <Util/Export.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>

namespace Zelkor
{
namespace Util
{

/// Starts applications when the user logs in. An application is named by an identifier of four parts joined by "_":
/// maker, product, version and flavour, as in "Zelkor_Studio_3.1.2_Agent".
///
/// \code
/// auto const launcher = GetAutoLauncherImpl(AutoLauncherImplType::Default);
/// if (!launcher->IsInStartup(identifier)) {
///     launcher->AddToStartup(identifier, QCoreApplication::applicationFilePath(), {QStringLiteral("--hidden")});
/// }
/// \endcode
///
/// What it tells is read from the system at each call, which may take a moment: on macOS, launchctl is run. Used on one
/// thread at a time, normally the GUI thread.
class ZQTUTIL_EXPORT IAutoLauncher
{
public:
    virtual ~IAutoLauncher();

    /// Whether the application \a identifier is started at login.
    ///
    /// On macOS launchctl's list is searched for the \a identifier as a regular expression at the end of a line, so
    /// that an empty one is found in any list.
    virtual bool IsInStartup(QString const& identifier) = 0;

    /// Has the application \a identifier started at login: the executable at \a executablePath with \a arguments. False
    /// when that cannot be asked of the system.
    ///
    /// On macOS a helper that the main bundle carries for the \a identifier in "Contents/Library/LoginItems" becomes a
    /// login item. Only when that fails, or there is none, path and arguments count, for a launch agent. It is written
    /// and loaded without waiting for the outcome: false means that the \a identifier has not four parts, which is
    /// logged as a warning, or that launchctl did not start.
    virtual bool AddToStartup(QString const& identifier, QString const& executablePath,
                              QStringList const& arguments) = 0;

    /// Has the application \a identifier started at login no more. False when it was not known, or when that cannot be
    /// asked of the system.
    ///
    /// What is known is what the last call found that read it: every other operation, and this one when it is true. On
    /// macOS a launch agent whose file is there is unloaded, loaded or not, without waiting for the outcome.
    virtual bool RemoveFromStartup(QString const& identifier) = 0;

    /// The identifiers of the applications that are started at login. On macOS these are the login items of the maker,
    /// and behind them the labels of all launch agents of the user that are loaded, other makers' too; what is both is
    /// there twice.
    virtual QStringList GetStartupApplications() = 0;
};

/// Which implementation to take.
enum class AutoLauncherImplType : int {
    Default ///< that of the system
};

/// A new launcher of the system's kind, whatever the \a type. GUI thread.
ZQTUTIL_EXPORT std::shared_ptr<IAutoLauncher> GetAutoLauncherImpl(AutoLauncherImplType type);

} // namespace Util
} // namespace Zelkor
