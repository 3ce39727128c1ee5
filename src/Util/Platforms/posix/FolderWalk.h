#pragma once

#include <Util/Platforms/posix/FolderStream.h>

#include <optional>
#include <string>
#include <vector>

#include <dirent.h>
#include <sys/types.h>

namespace Zelkor
{
namespace Util
{

/// Returns true if \a name is "." or "..".
bool IsDotEntry(char const* name);

/// Returns true if \a name is a subfolder of the folder that is open as the file descriptor \a parent. Returns false if
/// \a name is a link to a folder.
bool IsFolder(int parent, char const* name);

/// Traverses a folder tree. A derived class implements the work in each folder.
///
/// The traversal enters a folder, calls Read() to process all entries of the folder, enters each queued subfolder, and
/// then leaves the folder. The current folder is the innermost folder that the traversal has entered but has not left.
///
/// Links are never followed. The tree can have any depth and the paths can have any length. Only a few folders are open
/// at the same time. See FolderWalk.cpp for the design.
class FolderWalk
{
public:
    FolderWalk(FolderWalk const&) = delete;
    FolderWalk& operator=(FolderWalk const&) = delete;
    virtual ~FolderWalk() = default;

protected:
    /// With Call, Walk() calls SubfolderLeft() each time it has left a subfolder or has failed to enter a subfolder.
    /// With Nothing, Walk() never calls SubfolderLeft().
    enum class AfterSubfolder { Nothing, Call };

    /// Creates an object that traverses the tree below the start folder \a path. \a path must not be empty. If \a path
    /// is relative, it is relative to the folder that is open as the file descriptor \a parent. \a after determines
    /// whether Walk() calls SubfolderLeft().
    FolderWalk(int parent, std::string path, AfterSubfolder after);

    /// Traverses the start folder and all folders below it.
    void Walk();

    /// Queues the subfolder \a name. The traversal enters the subfolder after Read() has returned.
    void QueueSubfolder(char const* name);

    /// Returns the path of the current folder. During Read() and Unreadable(), returns the path of the folder that the
    /// traversal is trying to enter.
    std::string const& Path() const { return path_; }
    /// Returns the path of the entry \a name in the folder Path().
    std::string PathOf(char const* name) const;

    /// Reads the entries of the folder that the traversal is about to enter. \a stream is the open directory stream of
    /// this folder. Calls QueueSubfolder() for each subfolder that the traversal must enter later. Returns false if
    /// reading fails; the traversal then discards the queued subfolders of this folder.
    virtual bool Read(DIR* stream) = 0;
    /// Called if the folder Path() cannot be opened, or if Read() has returned false for this folder. The traversal
    /// does not enter this folder.
    virtual void Unreadable() = 0;
    /// Called if the current folder was closed and cannot be opened again, for example because it was moved or access
    /// to it is now denied. The traversal then discards the queued subfolders of the current folder and leaves it.
    virtual void Lost() = 0;
    /// Called immediately before the traversal leaves the current folder.
    virtual void Leaving() = 0;
    /// Called after the traversal has left the subfolder \a name, or has failed to enter this subfolder. \a parent is
    /// the file descriptor of the current folder, which contains the subfolder.
    virtual void SubfolderLeft(int parent, char const* name);

private:
    struct FolderId
    {
        dev_t device = 0;
        ino_t inode = 0;
    };

    struct Folder
    {
        FolderStream stream;         // null while the folder is closed
        FolderId id;                 // set when the stream is closed; identifies the folder when it is opened again
        std::size_t pathSize;        // the length of the folder's path; path_ begins with this path
        std::size_t subfoldersBegin; // the offset in subfolders_ at which the names of this folder's subfolders begin
        std::size_t nextSubfolder;   // the offset in subfolders_ at which the name of the next subfolder begins
    };

    static std::optional<FolderId> IdOf(DIR* stream);
    static bool Is(FolderStream const& stream, FolderId const& id);

    void EnterNextSubfolder();
    bool Enter(int parent, char const* name);
    void Leave();
    void GoUp();
    void FinishSubfolder();
    bool CloseOutermost();
    bool Reopen();
    FolderStream OpenAboveLeft() const;
    FolderStream OpenFromStart();
    void Lose();

    int const parent_; // the start folder's path is relative to this folder
    std::string path_;
    AfterSubfolder const after_;
    std::vector<Folder> folders_;   // the folders from the start folder to the current folder
    std::size_t closedFolders_ = 0; // the number of closed folders, which are always the first elements of folders_
    std::vector<char> subfolders_;  // the names of all queued subfolders, each with a terminating NUL

    // The open folder that the traversal left most recently, or null. Reopen() uses this folder and ".." to open a
    // closed folder above it.
    FolderStream below_;
    std::size_t levelsBelow_ = 0; // the number of levels from the current folder down to the folder below_

    // The name of the subfolder for which SubfolderLeft() must still be called, or empty if there is no such subfolder.
    std::string left_;
};

} // namespace Util
} // namespace Zelkor
