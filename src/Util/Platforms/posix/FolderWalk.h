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

/// Whether \a name is one of the two entries that every folder has.
bool IsDotEntry(char const* name);

/// Whether the entry \a name of the open folder \a parent is a folder, not a link to one.
bool IsFolder(int parent, char const* name);

/// A walk through a tree, folder by folder.
///
/// Each folder is opened relative to the one above it, so that the kernel never resolves a path and a path may be
/// longer than it would take. A folder is read to its end first; the names of its subfolders are put by and entered
/// after that. Of the folders above the current one only some stay open; a deeper walk closes the outermost, and opens
/// it again on the way back only when there is more to do in it. Links are never followed.
class FolderWalk
{
public:
    FolderWalk(FolderWalk const&) = delete;
    FolderWalk& operator=(FolderWalk const&) = delete;
    virtual ~FolderWalk() = default;

protected:
    /// What is to be done in a folder after one of its subfolders was left.
    enum class AfterSubfolder { Nothing, Call };

    FolderWalk(std::string path, AfterSubfolder after);

    /// Walks the folder at the path and everything below it.
    void Walk();

    /// Puts a subfolder by, to be entered when the folder that is read has come to its end.
    void PutBy(char const* name);

    /// The path of the current folder, or of the one that is about to become current.
    std::string const& Path() const { return path_; }
    /// The path of the entry \a name in it.
    std::string PathOf(char const* name) const;

    /// Reads the folder that was just opened, and puts its subfolders by. Returns false when that fails; what was put
    /// by is forgotten then.
    virtual bool Read(DIR* stream) = 0;
    /// The folder could not be opened, or not be read to its end; it does not become current.
    virtual void Unreadable() = 0;
    /// The current folder cannot be opened again, since it was moved or closed to us meanwhile. It is left next, and
    /// what was put by in it is forgotten.
    virtual void Lost() = 0;
    /// The current folder has nothing left to enter and is left.
    virtual void Leaving() = 0;
    /// In the open folder \a parent, now the current one again, the subfolder \a name was left, or could not be
    /// entered.
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
        FolderId id;                 // told when it is closed
        std::size_t pathSize;        // where its path ends in path_
        std::size_t subfoldersBegin; // where its subfolders' names stand in subfolders_,
        std::size_t nextSubfolder;   // and the first of them that is still to be entered
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
    std::vector<Folder> folders_; // from the start to the current one; the first closedFolders_ of them are closed
    std::size_t closedFolders_ = 0;
    std::vector<char> subfolders_; // names still to be entered, each with its NUL, of all folders_ in order
    FolderStream below_;           // the open folder that was left last,
    std::size_t levelsBelow_ = 0;  // and how far it is below the current one
    std::string left_;             // the name of the subfolder that was left last, while SubfolderLeft is still due
};

} // namespace Util
} // namespace Zelkor
