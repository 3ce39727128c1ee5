#pragma once

// The system that stands in for a Mac: its state, as tests set it and read it back. Plain C++, for tests of any kind.

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Zelkor::TestBed
{

/// Everything as it is when a program starts: no login items, no records, no failures, no
/// programs, a system of version 10.13.6.
void Reset();

// --- Core Foundation

/// How many objects were created, copied or inserted and are not released yet.
int LiveObjects();

/// The bundle that the program is; a folder.
void SetMainBundle(QString const& path);

enum class MainBundleCall { None, Get, CopyUrl };

/// The next calls of this kind, for the main bundle or its URL, return null.
void FailMainBundle(MainBundleCall call);

// --- The system

/// The version that SystemVersion.plist and the process tell, and that decides what is available.
void SetSystemVersion(QString const& version);

/// Where launchctl, open and tccutil are run when they are called by their full paths; without it they are missing.
void SetProgramsFolder(QString const& folder);

// --- Launch Services

enum class LoginItemsCall { None, Create, Snapshot, Insert, Remove };

/// The next calls of this kind fail.
void FailLoginItems(LoginItemsCall call);

/// Adds an item for the folder \a path; one that does not resolve leads nowhere, which its status
/// alone tells.
void AddLoginItem(QString const& path, bool resolves = true);

/// The URLs of the items, in order.
QStringList LoginItemUrls();

// --- The workspace

/// The URLs that were to be opened, in order.
QStringList OpenedUrls();

/// The URLs of each request to the file viewer, joined by a blank, in order.
QStringList FileViewerRequests();

} // namespace Zelkor::TestBed
