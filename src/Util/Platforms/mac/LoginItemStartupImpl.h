#pragma once

// Starting at login by login items: helpers that the application carries in its bundle.

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>

namespace Zelkor::Util
{

/// Adds, finds and removes the login items of the maker's applications. What it knows of them is from the last
/// UpdateStartupItems(). Failures are quiet: an item is skipped, an operation returns false. One thread.
class LoginItemStartupImpl
{
public:
    /// Knows no items yet.
    LoginItemStartupImpl();
    ~LoginItemStartupImpl();

    LoginItemStartupImpl(LoginItemStartupImpl const&) = delete;
    LoginItemStartupImpl& operator=(LoginItemStartupImpl const&) = delete;

    /// Reads the session's login items whose bundle identifier has \a filter as its second part.
    void UpdateStartupItems(QString const& filter);

    /// Whether the item \a appId is known.
    bool IsInStartup(QString const& appId) const;

    /// The identifiers of the known items, in order.
    QStringList GetItemsAtStartup() const;

    /// Makes the helper that the main bundle carries for \a appId a login item; true when it is known as one already.
    bool AddToLoginItems(QString const& appId) const;

    /// Removes the known item \a appId from the login items.
    bool RemoveFromLoginItems(QString const& appId) const;

private:
    class Impl;
    std::unique_ptr<Impl> const impl_;
};

} // namespace Zelkor::Util
