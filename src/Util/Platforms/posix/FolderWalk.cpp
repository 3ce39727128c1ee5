// FolderWalk traverses a folder tree. It opens each folder relative to its parent with openat() and O_NOFOLLOW. The
// kernel therefore never resolves a whole path. This has two advantages: paths can be longer than PATH_MAX, and a link
// that replaces a folder during the traversal is not followed.
//
// A folder is read completely before its subfolders are entered. The position in the folder's directory stream is
// therefore not needed later, and the stream may be closed.
//
// At most MaxOpenFolders folders are open, or fewer if the process has no more file descriptors. If this limit is
// reached, the traversal closes the outermost open folder before it enters the next folder. A folder that cannot be
// identified with fstat() stays open. Later, the traversal opens a closed folder again only if the folder has more
// subfolders to enter, or if SubfolderLeft() must be called.
//
// The traversal has two methods to open a closed folder again:
// - The first method starts from an open folder below the closed folder. It opens a relative path that has one ".." for
//   each level between the two folders, for example "../.." for two levels.
// - The second method opens each folder on the path, beginning with the start folder.
//
// The traversal compares the device and inode numbers to check that the correct folder was opened. It uses the second
// method only if the first method fails. If both methods fail, the traversal calls Lost().
//
// The names of all queued subfolders share one buffer, and all paths share one string. A subfolder therefore needs no
// separate allocation.

#include <Util/Platforms/posix/FolderWalk.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace Zelkor::Util
{
namespace
{

constexpr std::size_t MaxOpenFolders = 32;

} // namespace

bool IsDotEntry(char const* name)
{
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

bool IsFolder(int parent, char const* name)
{
    struct stat status;
    return fstatat(parent, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
}

FolderWalk::FolderWalk(int parent, std::string path, AfterSubfolder after)
    : parent_(parent)
    , path_(std::move(path))
    , after_(after)
{}

void FolderWalk::SubfolderLeft(int, char const*) {}

void FolderWalk::Walk()
{
    Enter(parent_, path_.c_str());
    while (!folders_.empty()) {
        Folder const& folder = folders_.back();
        if (left_.empty() && folder.nextSubfolder == subfolders_.size()) {
            Leave();
        } else if (!folder.stream && !Reopen()) {
            Lose();
        } else if (!left_.empty()) {
            FinishSubfolder();
        } else {
            EnterNextSubfolder();
        }
    }
}

void FolderWalk::QueueSubfolder(char const* name)
{
    subfolders_.insert(subfolders_.end(), name, name + std::strlen(name) + 1);
}

std::string FolderWalk::PathOf(char const* name) const
{
    return path_ + (path_.back() != '/' ? "/" : "") + name;
}

std::optional<FolderWalk::FolderId> FolderWalk::IdOf(DIR* stream)
{
    struct stat status;
    if (fstat(dirfd(stream), &status) != 0) {
        return std::nullopt;
    }
    return FolderId{status.st_dev, status.st_ino};
}

bool FolderWalk::Is(FolderStream const& stream, FolderId const& id)
{
    if (!stream) {
        return false;
    }
    std::optional<FolderId> const found = IdOf(stream.get());
    return found && found->device == id.device && found->inode == id.inode;
}

void FolderWalk::EnterNextSubfolder()
{
    Folder& folder = folders_.back();
    char const* const name = subfolders_.data() + folder.nextSubfolder;
    folder.nextSubfolder += std::strlen(name) + 1;
    if (path_.back() != '/') {
        path_ += '/';
    }
    path_ += name;
    below_.reset();
    if (!Enter(dirfd(folder.stream.get()), name)) {
        GoUp();
    }
}

/// Opens and reads the folder \a name in \a parent, and makes it the current folder. path_ must already be the path of
/// the folder \a name. Returns false if this folder cannot be opened or read.
bool FolderWalk::Enter(int parent, char const* name)
{
    if (folders_.size() - closedFolders_ >= MaxOpenFolders) {
        CloseOutermost();
    }
    Folder folder{OpenFolderStream(parent, name), {}, path_.size(), subfolders_.size(), subfolders_.size()};
    while (!folder.stream && (errno == EMFILE || errno == ENFILE) && CloseOutermost()) {
        folder.stream = OpenFolderStream(parent, name);
    }
    if (!folder.stream || !Read(folder.stream.get())) {
        subfolders_.resize(folder.subfoldersBegin);
        Unreadable();
        return false;
    }
    folders_.push_back(std::move(folder));
    return true;
}

/// Removes the current folder from folders_, so that its parent becomes the current folder.
void FolderWalk::Leave()
{
    Leaving();
    Folder& folder = folders_.back();
    if (folder.stream) {
        below_ = std::move(folder.stream);
        levelsBelow_ = 1;
    } else {
        --closedFolders_;
        ++levelsBelow_;
    }
    subfolders_.resize(folder.subfoldersBegin);
    folders_.pop_back();
    if (!folders_.empty()) {
        GoUp();
    }
}

/// Shortens path_ from the path of a subfolder to the path of the current folder. If SubfolderLeft() must be called,
/// first copies the name of the subfolder from path_ to left_.
void FolderWalk::GoUp()
{
    std::size_t const pathSize = folders_.back().pathSize;
    if (after_ == AfterSubfolder::Call) {
        left_ = path_.substr(path_.find_first_not_of('/', pathSize));
    }
    path_.resize(pathSize);
}

void FolderWalk::FinishSubfolder()
{
    SubfolderLeft(dirfd(folders_.back().stream.get()), left_.c_str());
    left_.clear();
}

/// Closes the outermost open folder and returns true. Never closes the current folder: if no other folder is open, this
/// function does nothing and returns false. It also returns false if the folder cannot be identified, because Reopen()
/// could then open a different folder.
bool FolderWalk::CloseOutermost()
{
    if (closedFolders_ + 1 >= folders_.size()) {
        return false;
    }
    Folder& outermost = folders_[closedFolders_];
    std::optional<FolderId> const id = IdOf(outermost.stream.get());
    if (!id) {
        return false;
    }
    ++closedFolders_;
    outermost.id = *id;
    outermost.stream.reset();
    return true;
}

/// Opens the current folder again. First tries a relative path such as "../..", which starts at the folder below_. If
/// this attempt fails, for example because below_ was moved, the function opens each folder on the path, beginning with
/// the start folder. Returns false if both attempts fail.
bool FolderWalk::Reopen()
{
    Folder& folder = folders_.back();
    FolderStream stream = OpenAboveLeft();
    if (!Is(stream, folder.id)) {
        stream = OpenFromStart();
    }
    if (!Is(stream, folder.id)) {
        return false;
    }
    folder.stream = std::move(stream);
    --closedFolders_;
    return true;
}

FolderStream FolderWalk::OpenAboveLeft() const
{
    std::string up;
    for (std::size_t level = 0; level < levelsBelow_; ++level) {
        up += "../";
    }
    return below_ ? OpenFolderStream(dirfd(below_.get()), up.c_str()) : nullptr;
}

FolderStream FolderWalk::OpenFromStart()
{
    below_.reset();
    FolderStream stream = OpenFolderStream(parent_, path_.substr(0, folders_.front().pathSize).c_str());
    for (std::size_t level = 1; stream && level < folders_.size(); ++level) {
        std::size_t const begin = path_.find_first_not_of('/', folders_[level - 1].pathSize);
        stream = OpenFolderStream(dirfd(stream.get()), path_.substr(begin, folders_[level].pathSize - begin).c_str());
    }
    return stream;
}

/// Calls Lost() and discards the queued subfolders of the current folder, so that Walk() leaves this folder next.
void FolderWalk::Lose()
{
    Lost();
    Folder& folder = folders_.back();
    subfolders_.resize(folder.subfoldersBegin);
    folder.nextSubfolder = folder.subfoldersBegin;
    left_.clear();
}

} // namespace Zelkor::Util
