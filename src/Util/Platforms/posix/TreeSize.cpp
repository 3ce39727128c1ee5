#include <Util/TreeSize.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Zelkor::Util
{
namespace
{

// A tree is walked folder by folder, each opened relative to the one above it, so that the kernel never resolves a
// path and a path may be longer than it would take. A folder is read to its end first; the names of its subfolders are
// put by and entered after that.

constexpr int FolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;

// How many folders of the current path stay open. A deeper walk closes the outermost, and opens it again on the way
// back only when there is more to enter.
constexpr std::size_t MaxOpenFolders = 32;

struct CloseFolder
{
    void operator()(DIR* stream) const { closedir(stream); }
};
using FolderStream = std::unique_ptr<DIR, CloseFolder>;

struct FolderId
{
    dev_t device = 0;
    ino_t inode = 0;

    bool operator==(FolderId const& other) const { return device == other.device && inode == other.inode; }
};

/// A folder of the current path.
struct Folder
{
    FolderStream stream;         // null while closed
    FolderId id;                 // told when it is closed
    std::size_t pathSize;        // where its path ends in Walk::path_
    std::size_t subfoldersBegin; // where its subfolders' names stand in Walk::subfolders_,
    std::size_t nextSubfolder;   // and the first of them that is still to be entered
    unsigned long long size;     // of all files below it, as far as known
};

FolderStream OpenFolder(int parent, char const* name)
{
    int const descriptor = openat(parent, name, FolderFlags);
    if (descriptor < 0) {
        return nullptr;
    }
    FolderStream stream(fdopendir(descriptor));
    if (!stream) {
        close(descriptor);
    }
    return stream;
}

FolderId IdOf(DIR* stream)
{
    struct stat status;
    return fstat(dirfd(stream), &status) == 0 ? FolderId{status.st_dev, status.st_ino} : FolderId();
}

bool IsFolder(int parent, char const* name)
{
    struct stat status;
    return fstatat(parent, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
}

bool IsDotEntry(char const* name)
{
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

class Walk
{
public:
    Walk(std::string path, SizelessHandler const& onSizeless)
        : path_(std::move(path))
        , onSizeless_(onSizeless)
    {}

    unsigned long long Run()
    {
        if (path_.empty() || path_.find('\0') != std::string::npos) {
            onSizeless_(path_);
        } else if (IsFolder(AT_FDCWD, path_.c_str())) {
            Enter(AT_FDCWD, path_.c_str());
        } else if (!AddFile(AT_FDCWD, path_.c_str(), total_)) {
            onSizeless_(path_);
        }
        while (!folders_.empty()) {
            Folder& folder = folders_.back();
            if (folder.nextSubfolder == subfolders_.size()) {
                Leave();
            } else if (folder.stream || Reopen()) {
                EnterNextSubfolder();
            } else {
                Lose();
            }
        }
        return total_;
    }

private:
    void EnterNextSubfolder()
    {
        Folder& folder = folders_.back();
        char const* const name = subfolders_.data() + folder.nextSubfolder;
        folder.nextSubfolder += std::strlen(name) + 1;
        AppendToPath(name);
        below_.reset();
        if (!Enter(dirfd(folder.stream.get()), name)) {
            path_.resize(folders_.back().pathSize);
        }
    }

    /// Opens and reads the folder \a name, whose path is path_ by now, and makes it the current one. Returns false when
    /// it is sizeless.
    bool Enter(int parent, char const* name)
    {
        if (folders_.size() - closedFolders_ >= MaxOpenFolders) {
            CloseOutermost();
        }
        Folder folder{OpenFolder(parent, name), {}, path_.size(), subfolders_.size(), subfolders_.size(), 0};
        while (!folder.stream && (errno == EMFILE || errno == ENFILE) && CloseOutermost()) {
            folder.stream = OpenFolder(parent, name);
        }
        if (!folder.stream || !Read(folder)) {
            subfolders_.resize(folder.subfoldersBegin);
            onSizeless_(path_);
            return false;
        }
        folders_.push_back(std::move(folder));
        return true;
    }

    /// Adds up the sizes of the files in \a folder and puts the names of its subfolders by.
    bool Read(Folder& folder)
    {
        int const descriptor = dirfd(folder.stream.get());
        for (;;) {
            errno = 0;
            dirent const* const entry = readdir(folder.stream.get());
            if (!entry) {
                return errno == 0;
            }
            char const* const name = entry->d_name;
            if (IsDotEntry(name)) {
                continue;
            }
            if (entry->d_type == DT_DIR || (entry->d_type == DT_UNKNOWN && IsFolder(descriptor, name))) {
                subfolders_.insert(subfolders_.end(), name, name + std::strlen(name) + 1);
            } else if (!AddFile(descriptor, name, folder.size)) {
                AppendToPath(name);
                onSizeless_(path_);
                path_.resize(folder.pathSize);
            }
        }
    }

    static bool AddFile(int parent, char const* name, unsigned long long& size)
    {
        struct stat status;
        if (fstatat(parent, name, &status, 0) != 0 || !S_ISREG(status.st_mode)) {
            return false;
        }
        size += static_cast<unsigned long long>(status.st_size);
        return true;
    }

    /// Goes back to the folder above the current one, which has nothing left to enter.
    void Leave()
    {
        Folder& folder = folders_.back();
        if (folder.stream) {
            below_ = std::move(folder.stream);
            levelsBelow_ = 1;
        } else {
            --closedFolders_;
            ++levelsBelow_;
        }
        unsigned long long const size = folder.size;
        subfolders_.resize(folder.subfoldersBegin);
        folders_.pop_back();
        if (folders_.empty()) {
            total_ = size;
        } else {
            folders_.back().size += size;
            path_.resize(folders_.back().pathSize);
        }
    }

    /// Closes the outermost folder that is open, unless it is the current one.
    bool CloseOutermost()
    {
        if (closedFolders_ + 1 >= folders_.size()) {
            return false;
        }
        Folder& outermost = folders_[closedFolders_++];
        outermost.id = IdOf(outermost.stream.get());
        outermost.stream.reset();
        return true;
    }

    /// Opens the current folder again: from the folder that was left last, or, when that was moved meanwhile, by the
    /// names from the start.
    bool Reopen()
    {
        Folder& folder = folders_.back();
        folder.stream = OpenAboveLeft();
        if (!folder.stream || !(IdOf(folder.stream.get()) == folder.id)) {
            folder.stream = OpenFromStart();
        }
        if (!folder.stream || !(IdOf(folder.stream.get()) == folder.id)) {
            folder.stream.reset();
            return false;
        }
        --closedFolders_;
        return true;
    }

    FolderStream OpenAboveLeft() const
    {
        std::string up;
        for (std::size_t level = 0; level < levelsBelow_; ++level) {
            up += "../";
        }
        return below_ ? OpenFolder(dirfd(below_.get()), up.c_str()) : nullptr;
    }

    FolderStream OpenFromStart()
    {
        below_.reset();
        FolderStream stream = OpenFolder(AT_FDCWD, path_.substr(0, folders_.front().pathSize).c_str());
        for (std::size_t level = 1; stream && level < folders_.size(); ++level) {
            std::size_t const begin = path_.find_first_not_of('/', folders_[level - 1].pathSize);
            stream = OpenFolder(dirfd(stream.get()), path_.substr(begin, folders_[level].pathSize - begin).c_str());
        }
        return stream;
    }

    /// Gives the current folder up as sizeless: it was moved or closed to us behind our back.
    void Lose()
    {
        Folder& folder = folders_.back();
        onSizeless_(path_);
        folder.size = 0;
        subfolders_.resize(folder.subfoldersBegin);
        folder.nextSubfolder = folder.subfoldersBegin;
    }

    void AppendToPath(char const* name)
    {
        if (path_.back() != '/') {
            path_ += '/';
        }
        path_ += name;
    }

    std::string path_; // of the current folder
    SizelessHandler const& onSizeless_;
    std::vector<Folder> folders_;   // the current path's, from the start; the first closedFolders_ of them are closed
    std::size_t closedFolders_ = 0; //
    std::vector<char> subfolders_;  // names still to be entered, each with its NUL, of all folders_ in order
    FolderStream below_;            // the open folder that was left last,
    std::size_t levelsBelow_ = 0;   // and how far it is below the current one
    unsigned long long total_ = 0;
};

} // namespace

unsigned long long TreeSize(std::string const& path, SizelessHandler const& onSizeless)
{
    return Walk(path, onSizeless).Run();
}

} // namespace Zelkor::Util
