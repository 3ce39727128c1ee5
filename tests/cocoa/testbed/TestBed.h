#pragma once

// Controls the simulated macOS system: tests set its state and read it back. Plain C++, so that any test can include
// it.

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Zelkor::TestBed
{

/// Restores the initial state: no main bundle, login items, recorded requests, failures or programs; system version
/// 10.13.6.
void Reset();

// --- Core Foundation

/// Returns the number of owned references to Core Foundation objects that are not released yet.
int LiveObjects();

/// Sets the folder of the program's main bundle.
void SetMainBundle(QString const& path);

enum class MainBundleCall { None, Get, CopyUrl };

/// Makes the following calls of this kind return null. MainBundleCall::None restores success.
void FailMainBundle(MainBundleCall call);

// --- The system

/// Sets the version in SystemVersion.plist and in NSProcessInfo. It also determines the result of @available.
void SetSystemVersion(QString const& version);

/// Sets the folder of the launchctl, open and tccutil programs that replace the ones called by full path. If \a folder
/// is empty, these programs are missing.
void SetProgramsFolder(QString const& folder);

// --- Launch Services

enum class LoginItemsCall { None, Create, Snapshot, Insert, Remove };

/// Makes the following calls of this kind fail. LoginItemsCall::None restores success.
void FailLoginItems(LoginItemsCall call);

/// Adds a login item for the folder \a path. If \a resolves is false, resolving the item returns its URL together with
/// an error status.
void AddLoginItem(QString const& path, bool resolves = true);

/// Returns the URLs of the login items, in order.
QStringList LoginItemUrls();

// --- The workspace

/// Returns the URLs passed to the workspace to open, in order.
QStringList OpenedUrls();

/// Returns the URLs of each request to show files in the file viewer, in order.
QList<QStringList> FileViewerRequests();

} // namespace Zelkor::TestBed
