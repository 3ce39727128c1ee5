#pragma once

/// \file
/// Functions for files and folders. They may be called on any thread, except the functions that show files in the file
/// manager.

#include <Base/IoPath.h>
#include <Util/Export.h>

#include <QtCore/QStandardPaths>
#include <QtCore/QString>

#include <vector>

namespace Zelkor
{
namespace Util
{

/// The result of the check of a destination folder.
enum class PathValidity : int {
    Valid,         ///< files can be created in the folder, or the folder can be created
    Empty,         ///< the path is empty
    Relative,      ///< the path is relative
    NotWritable,   ///< the folder exists, but no file can be created in it
    TrailingSpace, ///< the folder does not exist, and a name in its path ends with a space
    CannotCreate   ///< the folder does not exist and cannot be created
};

/// Checks if \a path can be used as a destination folder.
///
/// The path must be absolute. If the folder exists, the function creates and removes a temporary file in it. Otherwise
/// it creates the folder with its parents and removes them again. This removal also includes parents that were empty
/// before. If creating the folder fails, parents that were already created are not removed.
ZQTUTIL_EXPORT PathValidity IsThisPathValid(QString const& path);

/// Returns true if \a path can be used as a destination folder. See IsThisPathValid(QString const&) for the check and
/// its side effects.
///
/// \param path       the path that the user entered
/// \param errorText  receives a translated message for the user if the result is false; may be null
ZQTUTIL_EXPORT bool IsThisPathValid(QString const& path, QString* errorText);

/// Returns true if the permissions of \a folder let this process create files in it, and a test file can be created.
///
/// At least one of these permissions must be set:
/// - everybody may write;
/// - a group of this process may write;
/// - the owner may write, and is the effective user of this process.
///
/// The rule differs from POSIX (IEEE Std 1003.1, 4.5 File Access Permissions), where only the first matching class
/// decides. It also treats root as an ordinary user: if only the owner may write, and root is not the owner, the result
/// is false.
ZQTUTIL_EXPORT bool CanCreateFileIn(QString const& folder);

/// Returns true if the permissions of \a folder let this process read files in it. The files are not checked.
///
/// On macOS the result is always true, because the system requests the user's consent at the first access.
ZQTUTIL_EXPORT bool CanReadFileIn(QString const& folder);

/// Returns true if a file can be created in \a folder. Creates a file with a random name and removes it again.
ZQTUTIL_EXPORT bool TryCreateTmpFile(QString const& folder);

/// Removes the entries of \a folder that were last modified at least \a days days ago.
///
/// The limit is the current local time of day on the calendar day \a days days ago. Subfolders as old as the limit are
/// processed in the same way, and removed if they are then empty. Newer subfolders are not entered. Symbolic links are
/// removed, not followed. Entries that cannot be removed are skipped without a message.
///
/// The depth of the tree and the process's limit of open files do not matter.
///
/// \param folder              the folder; the function does nothing if it is empty, missing or a symbolic link
/// \param days                the minimum age in days; 0 removes everything modified up to the time of the call
/// \param removeFolderItself  true to remove \a folder too if it is then empty, whatever its age
ZQTUTIL_EXPORT void RemoveDir(QString const& folder, int days, bool removeFolderItself);

/// Removes the file, the symbolic link (not its target) or the empty folder at \a path. Throws and logs nothing.
///
/// \return true if something was removed; false if nothing exists at \a path or the system reports an error
ZQTUTIL_EXPORT bool RemoveFile(ioPath path);

/// Returns the size in bytes of the file at \a path, or the sum of the sizes of all files in the folder \a path and its
/// subfolders.
///
/// The size of a file includes its holes. Folders themselves add nothing. A file with several hard links counts once
/// for each link. A symbolic link to a file counts with the size of that file.
///
/// Entries without a size add nothing. Each is logged once at ERROR as "Erorr get size for: " and the path. These are:
/// - a missing file, or one that is removed during the call;
/// - a dangling link, and a link to a folder, which is not followed;
/// - a folder that cannot be read completely, with all its contents;
/// - a pipe, a socket or a device.
///
/// The depth of the tree, the length of its paths and the process's limit of open files do not matter. Throws nothing.
/// A call may take minutes on a network volume; use AsyncService to run it in the background.
ZQTUTIL_EXPORT unsigned long long GetPathSize(ioPath const& path);

/// Returns the user's folder for \a location, with native separators.
///
/// If the system has no such folder, returns the documents folder, or the home folder if there is none either. If the
/// folder is a symbolic link, returns the target of this link. A target that is a link again is not resolved.
ZQTUTIL_EXPORT QString GetStandardPath(QStandardPaths::StandardLocation location);

/// Returns the path of \a subPath in the user's movies folder, which contains the shared media library.
ZQTUTIL_EXPORT QString GetZelkorLibraryPath(QString subPath);

/// Shows \a file selected in the system's file manager. GUI thread.
///
/// \return the result of ExploreFile(ioPath const&, std::vector<ioPath> const&) for the parent folder of \a file
ZQTUTIL_EXPORT bool ExploreFile(ioPath const& file);

/// Shows \a files selected in the system's file manager. GUI thread. Does not wait for the file manager.
///
/// On macOS the Finder shows the files. On Linux the function calls org.freedesktop.FileManager1 on the session bus. If
/// there is no session bus, or the call fails, the desktop's default application opens \a folder. If that fails too,
/// one message is logged at WARNING.
///
/// \param folder  the folder to show if \a files is empty
/// \param files   the files to select
/// \return true on macOS; on Linux true if the call was sent or \a folder was opened
ZQTUTIL_EXPORT bool ExploreFile(ioPath const& folder, std::vector<ioPath> const& files);

/// Shows \a file selected in the system's file manager. GUI thread. Same as ExploreFile(ioPath const&).
ZQTUTIL_EXPORT bool ExploreSingleFile(QString const& file);

/// Returns the free space in bytes on the volume that contains \a path, or 0 if it cannot be read.
///
/// On Linux, space that is reserved for root does not count.
ZQTUTIL_EXPORT long long GetAvailableDiskSpace(ioPath const& path);

} // namespace Util
} // namespace Zelkor
