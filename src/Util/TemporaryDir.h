#pragma once

/// \file
/// A temporary directory in a folder that belongs to the application.

#include <Util/Export.h>

#include <QtCore/QString>

#include <memory>

QT_BEGIN_NAMESPACE
class QTemporaryDir;
QT_END_NAMESPACE

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
/// When a process creates its first object in the application's folder, the constructor deletes the contents of this
/// folder, except hidden files and folders. The deleted contents include the directories of earlier runs and of other
/// running instances of the same application. Symbolic links are deleted, but not followed.
///
/// The current user must own the application's folder and all folders between it and the temporary folder of the
/// system. None of these folders may be a symbolic link. Otherwise, a message is logged at ERROR, and the object is
/// invalid.
///
/// Different objects may be created on different threads. Use one object on one thread at a time.
class ZQTUTIL_EXPORT TemporaryDir
{
public:
    /// Creates the directory. Use isValid() to check the result.
    ///
    /// Throws `std::logic_error` ("Using TemporaryDir before and after applicationName and applicationVersion are set")
    /// if both properties are set now, but at least one was empty when an earlier object was created.
    TemporaryDir();

    /// Removes the directory with its contents if autoRemove() is true.
    ~TemporaryDir();

    TemporaryDir(TemporaryDir const&) = delete;
    TemporaryDir& operator=(TemporaryDir const&) = delete;

    /// Returns true if the directory was created.
    bool isValid() const;

    /// Returns Qt's error message if the directory was not created, otherwise an empty string.
    ///
    /// If the application's folder was rejected because of its owner or a symbolic link, the error message does not
    /// contain this reason. Only the log contains it.
    QString errorString() const;

    /// Returns true if the destructor removes the directory. The default is true.
    bool autoRemove() const;

    /// Sets whether the destructor removes the directory.
    ///
    /// \param autoRemove  true to remove the directory; false to keep it
    void setAutoRemove(bool autoRemove);

    /// Removes the directory with its contents.
    ///
    /// \return true if the directory was removed; false if removing it failed, or if it was not created
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
    std::unique_ptr<QTemporaryDir> dir_;
};

} // namespace Util
} // namespace Zelkor
