#pragma once

/// \file
/// Chores with files and folders. Any thread, unless it says otherwise.

#include <Base/IoPath.h>
#include <Util/Export.h>

#include <QtCore/QStandardPaths>
#include <QtCore/QString>

#include <vector>

namespace Zelkor
{
namespace Util
{

/// What is wrong with a destination folder.
enum class PathValidity : int {
    Valid,         ///< nothing
    Empty,         ///< the path is empty
    Relative,      ///< the path is relative
    NotWritable,   ///< the folder is there, but no file can be created in it
    TrailingSpace, ///< the folder is not there, and a name in its path ends with a space
    CannotCreate   ///< the folder is not there and cannot be created
};

/// Whether \a path can be a destination folder: an absolute one, in which files can be created, or which can be
/// created.
///
/// To find out, a file or the folder with its parents is created and removed again; with it go parents that were empty
/// before. Where creating the folder fails half-way, the parents made by then stay.
ZQTUTIL_EXPORT PathValidity IsThisPathValid(QString const& path);

/// Whether \a path can be a destination folder; see the other IsThisPathValid().
///
/// \param path       the path that the user gave
/// \param errorText  when it cannot, becomes the reason, translated, for the user; may be null
ZQTUTIL_EXPORT bool IsThisPathValid(QString const& path, QString* errorText);

/// Whether this user may create files in \a folder and one can be created: asks whether everybody may write there, or a
/// group that the process is in, or its owner, who is the user; then tries.
///
/// Other than in POSIX (IEEE Std 1003.1, 4.5 File Access Permissions), where the first class that fits decides, any of
/// the three will do, and root is asked like everybody: it may not where the folder belongs to somebody else and only
/// its owner may write.
ZQTUTIL_EXPORT bool CanCreateFileIn(QString const& folder);

/// Whether this user can read files in \a folder, as far as the folder is concerned. Always true on macOS, where the
/// system asks the user at the first attempt.
ZQTUTIL_EXPORT bool CanReadFileIn(QString const& folder);

/// Whether a file can be created in \a folder: creates one under a random name and removes it again.
ZQTUTIL_EXPORT bool TryCreateTmpFile(QString const& folder);

/// Removes what is in \a folder and at least \a days days old, by the day and time of its last modification.
///
/// A subfolder of that age is emptied in the same way, and removed when nothing is left in it; a newer one is not
/// entered. A link is removed like a file, whatever it leads to, which stays; when \a folder itself is a link, nothing
/// is done. What cannot be removed is passed over. Neither the depth of the tree nor the number of files that the
/// process may open limits it.
///
/// \param folder              the folder; nothing is done when it is missing, empty text or a link
/// \param days                days; 0 removes everything, except what changes meanwhile
/// \param removeFolderItself  whether \a folder is removed too, when nothing is left in it
ZQTUTIL_EXPORT void RemoveDir(QString const& folder, int days, bool removeFolderItself);

/// Removes the file, the link (not its target) or the empty folder at \a path.
///
/// \return whether something was removed; false also when the system refused. Nothing is thrown or logged.
ZQTUTIL_EXPORT bool RemoveFile(ioPath path);

/// The size of the file at \a path, or of all files below that folder, in bytes, as the files state it (holes count,
/// the folders' own blocks do not; a file with several names counts under each).
///
/// A link counts with the size of the file it leads to; what a link to a folder leads to is not entered. Whatever has
/// no size to tell contributes nothing and is logged once, at ERROR severity, as "Erorr get size for: " and its path:
/// what is missing or vanishes meanwhile, a dangling link, a link to a folder, a folder that is closed to us (with all
/// that is in it), a pipe, a socket or a device.
///
/// Each entry is looked at once. Neither the depth of the tree nor its paths' length nor the number of files that the
/// process may open limits it. Nothing is thrown. On a network volume it may take minutes: see AsyncService.
ZQTUTIL_EXPORT unsigned long long GetPathSize(ioPath const& path);

/// The folder that the system keeps for \a location; where it has none, the user's documents, else the home folder. A
/// link is resolved once. Separators are the system's.
ZQTUTIL_EXPORT QString GetStandardPath(QStandardPaths::StandardLocation location);

/// The path of \a subPath in the folder of the user's films, where the shared media library lies.
ZQTUTIL_EXPORT QString GetZelkorLibraryPath(QString subPath);

/// Shows \a file in its folder in the system's file manager. GUI thread. The result is that of
/// ExploreFile(ioPath const&, std::vector<ioPath> const&).
ZQTUTIL_EXPORT bool ExploreFile(ioPath const& file);

/// Shows \a files selected in the system's file manager, or \a folder when there are none. GUI thread; does not wait
/// for its answer.
///
/// On macOS the Finder is asked, and the result is always true. On Linux the file manager is asked over D-Bus
/// (org.freedesktop.FileManager1); when there is none, \a folder is opened by whatever opens folders, and when that
/// fails as well, one WARNING is logged. The result is whether somebody could be asked.
ZQTUTIL_EXPORT bool ExploreFile(ioPath const& folder, std::vector<ioPath> const& files);

/// Shows \a file in its folder in the system's file manager; see ExploreFile(). GUI thread.
ZQTUTIL_EXPORT bool ExploreSingleFile(QString const& file);

/// The bytes that this user can still write on the volume of \a path; 0 when that cannot be told.
ZQTUTIL_EXPORT long long GetAvailableDiskSpace(ioPath const& path);

} // namespace Util
} // namespace Zelkor
