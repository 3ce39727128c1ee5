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

/// Creates a directory with a unique name and removes it on destruction.
///
/// The directory is created in the application's folder. The path of this folder is
/// "<temporary folder of the system>/<application name>/<major version>/<base name of the executable>". Set
/// `QCoreApplication::applicationName` and `applicationVersion` first. While either is empty, the directory is created
/// at the default location of `QTemporaryDir`.
///
/// The first object of a process in the application's folder removes the entries of this folder, which earlier runs
/// have left. It also removes the directories of other running instances of the same application. Hidden entries stay.
/// Symbolic links are removed, not followed.
///
/// The current user must own the application's folder and its parents up to the temporary folder of the system. None of
/// them may be a symbolic link. Otherwise a message is logged at ERROR, and the object is invalid.
///
/// Different objects may be created on different threads. Use one object on one thread at a time.
class ZQTUTIL_EXPORT TemporaryDir
{
public:
    /// Creates the directory. Use isValid() to check the result.
    ///
    /// Throws `std::logic_error` ("Using TemporaryDir before and after applicationName and applicationVersion are set")
    /// if both properties are set now, and this process has already created an object without them.
    TemporaryDir();

    /// Removes the directory with its contents if autoRemove() is true.
    ~TemporaryDir();

    TemporaryDir(TemporaryDir const&) = delete;
    TemporaryDir& operator=(TemporaryDir const&) = delete;

    /// Returns true if the directory was created.
    bool isValid() const;

    /// Returns Qt's message if the directory was not created.
    ///
    /// If a parent folder belongs to another user or is a symbolic link, only the log contains this reason.
    QString errorString() const;

    /// Returns true if the destructor removes the directory. This is the default.
    bool autoRemove() const;

    /// Sets whether the destructor removes the directory.
    ///
    /// \param autoRemove  true to remove it
    void setAutoRemove(bool autoRemove);

    /// Removes the directory with its contents.
    ///
    /// \return true if it was removed; false if that failed or the directory was not created
    bool remove();

    /// Returns the absolute path of the directory, or an empty text if it was not created.
    QString path() const;

    /// Returns the absolute path of a file in the directory. The file need not exist.
    ///
    /// \param fileName  the relative path of the file
    /// \return the path; empty if the directory was not created, or if \a fileName is absolute, which Qt reports with a
    ///         warning
    QString filePath(QString const& fileName) const;

private:
    std::unique_ptr<QTemporaryDir> dir_;
};

} // namespace Util
} // namespace Zelkor
