#pragma once

/// \file
/// A temporary directory in a folder of the application's own.

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

/// A fresh directory with a unique name, removed with the object: a `QTemporaryDir` that lies in the system's temporary
/// folder under the application's name, its major version and the base name of its executable.
///
/// The first one of a process empties that folder of what earlier runs have left behind, and of what other copies of
/// the application that run meanwhile have there. Nothing outside the folder is touched: links in it are removed, not
/// followed, hidden entries stay, and when the folder, or one of those above it up to the temporary folder, is a link
/// or belongs to somebody else, that is logged at ERROR severity and the object is invalid.
///
/// Set `QCoreApplication::applicationName` and `applicationVersion` first: while either is empty, the directory lies
/// where a `QTemporaryDir` does.
///
/// Objects may be made on several threads.
class ZQTUTIL_EXPORT TemporaryDir
{
public:
    /// Makes the directory; isValid() tells whether that worked.
    ///
    /// Throws `std::logic_error` ("Using TemporaryDir before and after applicationName and applicationVersion are set")
    /// when an earlier object of the process was made without them.
    TemporaryDir();

    /// Removes the directory with all that is in it, unless autoRemove() is off.
    ~TemporaryDir();

    TemporaryDir(TemporaryDir const&) = delete;
    TemporaryDir& operator=(TemporaryDir const&) = delete;

    /// Whether the directory was made.
    bool isValid() const;

    /// Why it was not, as far as Qt knows. That a folder on the way is not our own is told by the log only.
    QString errorString() const;

    /// Whether the destructor removes the directory; it does at first.
    bool autoRemove() const;

    /// Sets whether the destructor removes the directory.
    void setAutoRemove(bool autoRemove);

    /// Removes the directory with all that is in it, and returns whether that worked.
    bool remove();

    /// The absolute path of the directory; empty when it was not made.
    QString path() const;

    /// The absolute path of \a fileName, which is relative, in the directory; empty when that was not made.
    QString filePath(QString const& fileName) const;

private:
    std::unique_ptr<QTemporaryDir> dir_;
};

} // namespace Util
} // namespace Zelkor
