#pragma once

/// \file
/// A temporary directory in a folder that belongs to the application.

#include <Util/Export.h>

#include <QtCore/QString>

#include <memory>

namespace Zelkor
{
namespace Util
{

/// A directory with a unique name. The constructor creates the directory, and the destructor removes it.
///
/// The directory is created in the application's folder. The path of the application's folder is
/// "<temporary folder of the system>/<application name>/<major version>/<base name of the executable>". Set
/// `QCoreApplication::applicationName` and `applicationVersion` first. If one of these properties is empty, the
/// directory is created at the default location of `QTemporaryDir`.
///
/// The first object that a process creates in the application's folder prepares this folder, once per process. If the
/// folder is missing, it is created. Otherwise, its contents are deleted, except hidden entries, dangling links and
/// special files such as pipes. The contents include the remains of earlier runs, but also the directories of other
/// running instances of the same application. Symbolic links are deleted, but not followed.
///
/// If the application's folder cannot be created at that time, or if it is removed later, all later objects of the
/// process are invalid.
///
/// Other users can often write to the temporary folder of the system. Therefore, the current user must own the
/// application's folder and all folders between it and the temporary folder of the system. If other users can write to
/// one of these folders, this permission is removed, and a message is logged at WARNING. Each of these folders can be a
/// symbolic link if the current user owns both the link and the folder that it points to.
///
/// Different objects may be created on different threads. Use one object on one thread at a time.
class ZQTUTIL_EXPORT TemporaryDir
{
public:
    /// Creates the directory. Use isValid() to check the result. If the directory cannot be created, a message is
    /// logged at ERROR.
    ///
    /// Throws `std::logic_error` ("Using TemporaryDir before and after applicationName and applicationVersion are set")
    /// if both properties are set now, but at least one was empty when an earlier object was created.
    TemporaryDir();

    /// Calls remove() if autoRemove() is true and the directory was created.
    ~TemporaryDir();

    TemporaryDir(TemporaryDir const&) = delete;
    TemporaryDir& operator=(TemporaryDir const&) = delete;

    /// Returns true if the directory was created.
    bool isValid() const;

    /// Returns the reason why the directory was not created, or an empty string if it was created. The text can be
    /// shown to the user. It contains the path of the folder that is missing or was rejected.
    QString errorString() const;

    /// Returns true if the destructor removes the directory. The default is true.
    bool autoRemove() const;

    /// Sets whether the destructor removes the directory.
    ///
    /// \param autoRemove  true to remove the directory; false to keep it
    void setAutoRemove(bool autoRemove);

    /// Removes the directory with its contents. Symbolic links in it are removed, but not followed. If the directory
    /// cannot be removed, a message is logged at WARNING. A different folder at the path of the directory is not
    /// removed.
    ///
    /// \return true if the directory was removed or no longer exists; false if removing it failed, or if it was not
    ///         created
    bool remove();

    /// Returns the absolute path of the directory, or an empty string if the directory was not created.
    QString path() const;

    /// Returns the absolute path of a file in the directory. The file need not exist.
    ///
    /// \param fileName  the relative path of the file
    /// \return the path, or an empty string if the directory was not created or if \a fileName is absolute. If
    ///         \a fileName is absolute, Qt also logs a warning.
    QString filePath(QString const& fileName) const;

private:
    struct ZQTUTIL_NO_EXPORT Impl;

    std::unique_ptr<Impl> impl_;
};

} // namespace Util
} // namespace Zelkor
