#pragma once

// Tests use these functions to set and read the state of the simulated macOS system. This header is plain C++, so that
// every test can include it.

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Zelkor::TestBed
{

/// Restores the initial state. The system version is 10.13.6, and all calls succeed. The main bundle, the folder of
/// fake programs, the login items and the recorded requests are removed.
void Reset();

// --- Core Foundation

/// Returns the number of owned references to Core Foundation objects that have not been released.
int LiveObjects();

/// Makes the bundle in the folder \a path the main bundle of the program.
void SetMainBundle(QString const& path);

enum class MainBundleCall { None, Get, CopyUrl };

/// Makes all following calls of the kind \a call return null. With MainBundleCall::None, all calls succeed again.
void FailMainBundle(MainBundleCall call);

// --- The system

/// Sets the system version that SystemVersion.plist and NSProcessInfo report. This version also determines the result
/// of @available.
void SetSystemVersion(QString const& version);

/// Sets the folder that contains the fake programs launchctl, open and tccutil. When the library starts one of the real
/// programs by its absolute path, the fake program runs instead. If \a folder is empty, the start fails.
void SetProgramsFolder(QString const& folder);

// --- Launch Services

enum class LoginItemsCall { None, Create, Snapshot, Insert, Remove };

/// Makes all following calls of the kind \a call fail. With LoginItemsCall::None, all calls succeed again.
void FailLoginItems(LoginItemsCall call);

/// Adds a login item for the folder \a path. If \a resolves is false, resolving the login item returns an error, but
/// also provides the URL.
void AddLoginItem(QString const& path, bool resolves = true);

/// Returns the URLs of the login items, in order.
QStringList LoginItemUrls();

// --- The workspace

/// Returns the URLs that were passed to -[NSWorkspace openURL:], in the order of the calls.
QStringList OpenedUrls();

/// Returns one list for each request to show files in the file viewer, in the order of the requests. Each list contains
/// the URLs of the files.
QList<QStringList> FileViewerRequests();

} // namespace Zelkor::TestBed
