#pragma once

#include <memory>
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

/// Returns true if the entry \a name of the open folder \a parent is a folder, not a link to one.
bool IsFolder(int parent, char const* name);

/// Walks a tree folder by folder. A derived class implements the work in each folder.
///
/// Read() handles all entries of a folder before the walk enters its subfolders. Links are never followed. The walk has
/// no limit for the depth of the tree or the length of paths, and keeps only a few folders open. See FolderWalk.cpp for
/// the design.
class FolderWalk
{
public:
    FolderWalk(FolderWalk const&) = delete;
    FolderWalk& operator=(FolderWalk const&) = delete;
    virtual ~FolderWalk() = default;

protected:
    /// Selects if the walk calls SubfolderLeft().
    enum class AfterSubfolder { Nothing, Call };

    /// Prepares a walk that starts at the folder \a path, which must not be empty. \a after selects if the walk calls
    /// SubfolderLeft().
    FolderWalk(std::string path, AfterSubfolder after);

    /// Walks the start folder and all folders below it.
    void Walk();

    /// Queues the subfolder \a name. The walk enters it after Read() has returned.
    void QueueSubfolder(char const* name);

    /// Returns the path of the current folder. During Read() and Unreadable(), returns the path of the new folder.
    std::string const& Path() const { return path_; }
    /// Returns the path of the entry \a name in the folder Path().
    std::string PathOf(char const* name) const;

    /// Reads the new folder \a stream and calls QueueSubfolder() for its subfolders. Returns false if reading fails;
    /// the walk then discards the queued subfolders.
    virtual bool Read(DIR* stream) = 0;
    /// Called if the new folder cannot be opened or Read() has returned false. The walk does not enter the folder.
    virtual void Unreadable() = 0;
    /// Called if the current folder cannot be opened again, because it was moved or access to it is denied now. The
    /// walk discards its queued subfolders and leaves it next.
    virtual void Lost() = 0;
    /// Called when the walk leaves the current folder.
    virtual void Leaving() = 0;
    /// Called after the walk has left the subfolder \a name, or could not enter it. \a parent is the current folder.
    virtual void SubfolderLeft(int parent, char const* name);

private:
    struct CloseFolder
    {
        void operator()(DIR* stream) const { closedir(stream); }
    };
    using FolderStream = std::unique_ptr<DIR, CloseFolder>;

    struct FolderId
    {
        dev_t device = 0;
        ino_t inode = 0;
    };

    struct Folder
    {
        FolderStream stream;         // null while closed
        FolderId id;                 // set when the stream is closed
        std::size_t pathSize;        // the length of its path in path_
        std::size_t subfoldersBegin; // the offset of its first subfolder in subfolders_
        std::size_t nextSubfolder;   // the offset of its next subfolder to enter
    };

    static FolderStream Open(int parent, char const* name);
    static FolderId IdOf(DIR* stream);
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

    std::string path_;
    AfterSubfolder const after_;
    std::vector<Folder> folders_;   // from the start folder to the current one
    std::size_t closedFolders_ = 0; // the number of folders at the beginning of folders_ that are closed
    std::vector<char> subfolders_;  // the queued names of all folders_, each with its terminating NUL
    FolderStream below_;            // the last folder that was left and was still open
    std::size_t levelsBelow_ = 0;   // the number of levels from the current folder down to below_
    std::string left_;              // the subfolder for which SubfolderLeft() must still be called; empty if none
};

} // namespace Util
} // namespace Zelkor
