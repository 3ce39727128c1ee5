#pragma once

// Folders in places where other users can write. Private to the library.

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>
#include <utility>

namespace Zelkor
{
namespace Util
{

/// An open folder of the current user below a folder that is shared with other users.
///
/// The constructor opens each folder of the path relative to its parent. Therefore, another user cannot redirect the
/// object to a different folder, even by replacing a folder of the path at the same time. All functions use the open
/// folder.
class OwnFolder
{
public:
    /// Determines whether the constructor creates a missing folder or fails.
    enum class IfMissing { Create, Fail };

    /// Opens the folder at the path \a root, and below it one folder for each name in \a levels.
    ///
    /// The effective user must own each folder in \a levels. A level can be a link if the effective user owns both the
    /// link and the folder that it points to. If other users can write to a level, the constructor removes their write
    /// permission and logs a message at WARNING. Created folders are accessible to their owner only.
    ///
    /// \a root can have any owner, and it can be a link.
    OwnFolder(QString const& root, QStringList const& levels, IfMissing ifMissing);
    ~OwnFolder();

    OwnFolder(OwnFolder const&) = delete;
    OwnFolder& operator=(OwnFolder const&) = delete;

    bool IsOpen() const { return descriptor_ >= 0; }

    /// Returns the reason why the folder could not be opened, as a translated sentence for the user.
    QString const& ErrorString() const { return error_; }

    /// Removes all entries of the folder, except hidden entries, dangling links, and special files such as pipes.
    /// Subfolders are removed with all their contents. Links are removed, but not followed. Entries that cannot be
    /// removed are skipped.
    void RemoveVisibleEntries() const;

    /// Returns true if the folder has an entry \a name.
    bool Contains(QString const& name) const;

private:
    int descriptor_ = -1;
    QString error_;
};

/// A folder that this process has created. It is recognised by its device and inode number, so that a different folder
/// at the same path is never removed.
class CreatedFolder
{
public:
    /// Represents no folder. Remove() returns false.
    CreatedFolder() = default;
    /// Represents the folder that is at \a path now.
    explicit CreatedFolder(QString const& path);

    /// Removes the folder with all its contents. Links are removed, but not followed.
    ///
    /// \return true if nothing is at the path any more; false if an entry cannot be removed, or if a different entry is
    ///         at the path
    bool Remove() const;

private:
    using FolderId = std::pair<unsigned long long, unsigned long long>; // the device and the inode number

    QString path_;
    std::optional<FolderId> id_; // empty if the folder could not be identified
};

} // namespace Util
} // namespace Zelkor
