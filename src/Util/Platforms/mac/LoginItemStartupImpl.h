#pragma once

// Starts applications at login by login items: helper applications inside the bundle of the main application.

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>

namespace Zelkor::Util
{

/// Adds, finds and removes the login items of one maker's applications.
///
/// The object caches the identifiers and paths of the login items. Only UpdateStartupItems() refreshes this list.
/// Nothing is logged or thrown: an item that cannot be read is skipped, and a failed operation returns false. Use an
/// object on one thread at a time.
class LoginItemStartupImpl
{
public:
    /// Creates an object with an empty list. Does not read the login items.
    LoginItemStartupImpl();
    ~LoginItemStartupImpl();

    LoginItemStartupImpl(LoginItemStartupImpl const&) = delete;
    LoginItemStartupImpl& operator=(LoginItemStartupImpl const&) = delete;

    /// Reads the list of login items from the session. Includes only items whose bundle identifier has \a maker as its
    /// second part.
    void UpdateStartupItems(QString const& maker);

    /// Returns true if the cached list contains the item \a identifier.
    bool IsInStartup(QString const& identifier) const;

    /// Returns the identifiers in the cached list, in alphabetical order.
    QStringList GetItemsAtStartup() const;

    /// Adds the helper for \a identifier in the main bundle to the login items.
    ///
    /// \return true if the helper was added or the cached list contains it; false if there is no helper or the system
    ///         reports an error
    bool AddToLoginItems(QString const& identifier) const;

    /// Removes the item \a identifier from the login items.
    ///
    /// \return true if it was removed; false if the cached list does not contain it or the system reports an error
    bool RemoveFromLoginItems(QString const& identifier) const;

private:
    class Impl;
    std::unique_ptr<Impl> const impl_;
};

} // namespace Zelkor::Util
