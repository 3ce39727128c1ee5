#pragma once

/// \file
/// Functions for files and folders. Call the functions that show files in the file manager on the GUI thread. All other
/// functions may be called on any thread.

#include <Base/IoPath.h>
#include <Util/Export.h>

#include <QtCore/QStandardPaths>
#include <QtCore/QString>

#include <vector>

namespace Zelkor
{
namespace Util
{

/// The result of IsThisPathValid(QString const&), which checks a destination folder.
enum class PathValidity : int {
    Valid,         ///< files can be created in the folder, or the folder can be created
    Empty,         ///< the path is empty
    Relative,      ///< the path is relative
    NotWritable,   ///< the folder exists, but no file can be created in it
    TrailingSpace, ///< the folder does not exist, and a component of its path ends with a space
    CannotCreate   ///< the folder does not exist and cannot be created
};

/// Checks if \a path can be used as a destination folder.
///
/// The path must be absolute. If the folder exists, the function creates a temporary file in it and removes the file
/// again. If the folder does not exist, the function creates the folder and its missing parents, then removes them.
/// Parents that already existed and were empty are removed too. If creating the folder fails, the function removes only
/// the parents that it has created.
///
/// The system resolves ".." in the path: after a symbolic link, ".." is the parent of the target. If the path contains
/// "..", the function removes exactly the folders that it has created.
ZQTUTIL_EXPORT PathValidity IsThisPathValid(QString const& path);

/// Returns true if \a path can be used as a destination folder. See IsThisPathValid(QString const&) for the check and
/// its side effects.
///
/// \param path       the path that the user entered
/// \param errorText  receives a translated message for the user if the result is false; may be null
ZQTUTIL_EXPORT bool IsThisPathValid(QString const& path, QString* errorText);

/// Returns true if the permissions of \a folder let this process create files, and if a test file can be created
/// in \a folder.
///
/// At least one of these permissions must be set:
/// - everybody may write;
/// - the group of the folder may write, and this process belongs to that group;
/// - the owner of the folder may write, and the owner is the effective user of this process.
///
/// This rule differs from POSIX (IEEE Std 1003.1, 4.5 File Access Permissions). POSIX checks only the permissions of
/// the first matching class (owner, group or others). This rule also treats root as an ordinary user: if only the owner
/// may write, and root is not the owner, the result is false for root.
///
/// Returns false if \a folder does not exist or contains a NUL character.
ZQTUTIL_EXPORT bool CanCreateFileIn(QString const& folder);

/// Returns true if \a folder is a folder and its permissions let this process read files in it. The permissions of the
/// files themselves are not checked. Returns false if \a folder contains a NUL character.
///
/// On macOS the result is always true, for any \a folder, because the system requests the user's consent at the first
/// access.
ZQTUTIL_EXPORT bool CanReadFileIn(QString const& folder);

/// Returns true if a file can be created in \a folder. The function creates a file with a random name and removes the
/// file again. The system resolves ".." in \a folder, as it does for CanCreateFileIn(). Returns false if \a folder
/// contains a NUL character.
ZQTUTIL_EXPORT bool TryCreateTmpFile(QString const& folder);

/// Removes old files and subfolders from \a folder. An entry is old if its last modification was at the time limit or
/// earlier.
///
/// The time limit is \a days calendar days before the current local date, at the current local time of day.
///
/// An old subfolder is processed in the same way, and removed if it is then empty. Other subfolders are skipped with
/// all their contents. Entries that cannot be removed are skipped without a message.
///
/// If \a folder is a symbolic link to a folder, the function processes the target's contents and keeps the link and the
/// target. Links below \a folder are never followed: an old link is removed like a file.
///
/// The tree can have any depth. The function works even if the process's limit of open files is low.
///
/// \param folder              the path of the folder; the function does nothing if the path is empty, if the folder
///                            does not exist, or if the path contains a NUL character
/// \param days                the minimum age in days; 0 removes everything modified up to the time of the call
/// \param removeFolderItself  true to also remove \a folder if it is then empty; the age of \a folder is not checked
ZQTUTIL_EXPORT void RemoveDir(QString const& folder, int days, bool removeFolderItself);

/// Removes the file, the symbolic link (not its target) or the empty folder at \a path. Does not throw or log.
///
/// \return true if something was removed; false if nothing exists at \a path or the system reports an error
ZQTUTIL_EXPORT bool RemoveFile(ioPath path);

/// Returns the size in bytes of the file at \a path, or the sum of the sizes of all files in the folder \a path and its
/// subfolders.
///
/// The size of a sparse file includes its holes. The size of a folder itself is not added. A file with several hard
/// links is added once for each hard link. For a symbolic link to a file, the size of that file is added.
///
/// The following entries add nothing to the result. Each of them is logged once at ERROR as "Erorr get size for: "
/// (with this spelling), followed by the path:
/// - a file that does not exist, or that is removed during the call;
/// - a dangling link, and a link to a folder; the function does not follow links to folders;
/// - a folder that cannot be read completely; its contents add nothing either;
/// - a pipe, a socket or a device.
///
/// The tree can have any depth, and the paths can have any length. The function works even if the process's limit of
/// open files is low. Does not throw. A call may take minutes on a network volume; use AsyncService to run it in the
/// background.
ZQTUTIL_EXPORT unsigned long long GetPathSize(ioPath const& path);

/// Returns the user's folder for \a location, with native separators.
///
/// If the system has no folder for \a location, returns the documents folder. If the system has no documents folder
/// either, returns the home folder. If the folder is a symbolic link, returns the target of the link. If the target is
/// also a link, the function does not resolve it.
ZQTUTIL_EXPORT QString GetStandardPath(QStandardPaths::StandardLocation location);

/// Returns the path of the user's movies folder, followed by a separator and \a subPath. The movies folder contains the
/// shared media library.
ZQTUTIL_EXPORT QString GetZelkorLibraryPath(QString subPath);

/// Opens the system's file manager and selects \a file. Call this function on the GUI thread.
///
/// \return on macOS, always true; on Linux, true if the D-Bus call was sent or the parent folder of \a file was opened.
///         See ExploreFile(ioPath const&, std::vector<ioPath> const&).
ZQTUTIL_EXPORT bool ExploreFile(ioPath const& file);

/// Opens the system's file manager and selects \a files. Does not wait for the file manager. Call this function on the
/// GUI thread.
///
/// On macOS, the Finder shows the files. On Linux, the function calls the D-Bus service org.freedesktop.FileManager1
/// on the session bus. If there is no session bus, or the call returns an error, the function opens \a folder
/// in the desktop's default application. If \a folder cannot be opened either, one message is logged at WARNING.
///
/// A path that contains a NUL byte is never opened. On macOS, such a path is ignored.
///
/// \param folder  the folder to show if \a files is empty
/// \param files   the files to select
/// \return on macOS, always true; on Linux, true if the D-Bus call was sent or \a folder was opened
ZQTUTIL_EXPORT bool ExploreFile(ioPath const& folder, std::vector<ioPath> const& files);

/// Opens the system's file manager and selects \a file. Call this function on the GUI thread. Returns the
/// result of ExploreFile(ioPath const&). If \a file contains a NUL character, only the text before it is used.
ZQTUTIL_EXPORT bool ExploreSingleFile(QString const& file);

/// Returns the free space in bytes on the volume that contains \a path, or 0 if the free space cannot be determined,
/// for example because \a path contains a NUL byte. If the free space exceeds the maximum value of `long long`, returns
/// this maximum value.
///
/// On Linux, the result does not include the space that is reserved for root.
ZQTUTIL_EXPORT long long GetAvailableDiskSpace(ioPath const& path);

} // namespace Util
} // namespace Zelkor
