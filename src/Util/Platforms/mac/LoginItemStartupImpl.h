#pragma once

// Starts applications at login through login items. A login item is a helper application inside the bundle of the main
// application.

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>

namespace Zelkor::Util
{

/// Adds, finds and removes the login items of one vendor's applications.
///
/// The object caches a list of the identifiers and paths of the login items. Only UpdateStartupItems() refreshes this
/// list. The functions do not log or throw: they skip login items that cannot be read, and return false on failure. Do
/// not use an object on several threads at the same time.
class LoginItemStartupImpl
{
public:
    /// Creates an object with an empty list. Does not read the login items.
    LoginItemStartupImpl();
    ~LoginItemStartupImpl();

    LoginItemStartupImpl(LoginItemStartupImpl const&) = delete;
    LoginItemStartupImpl& operator=(LoginItemStartupImpl const&) = delete;

    /// Replaces the cached list with the login items of the vendor \a maker in the user's session. The vendor is the
    /// second part of a login item's bundle identifier.
    void UpdateStartupItems(QString const& maker);

    /// Returns true if the cached list contains a login item for the application \a identifier.
    bool IsInStartup(QString const& identifier) const;

    /// Returns the identifiers in the cached list, in alphabetical order.
    QStringList GetItemsAtStartup() const;

    /// Adds a helper application to the login items. The helper must be inside the main bundle, which is the bundle of
    /// the running application. The third part of the helper's bundle identifier must be equal to the fourth part of
    /// \a identifier.
    ///
    /// \return true if the helper was added, or if the cached list already contains \a identifier; false if the main
    ///         bundle does not contain the helper, or if the system reports an error
    bool AddToLoginItems(QString const& identifier) const;

    /// Removes the login item of the application \a identifier.
    ///
    /// \return true if the login item was removed; false if the cached list does not contain the login item, or if the
    ///         system reports an error
    bool RemoveFromLoginItems(QString const& identifier) const;

private:
    class Impl;
    std::unique_ptr<Impl> const impl_;
};

} // namespace Zelkor::Util
