#pragma once

/// \file
/// Qt's messages in the application's glog log.

#include <Util/Export.h>

#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <functional>
#include <memory>

namespace Zelkor
{
namespace Util
{

/// Sends what is reported through qDebug(), qInfo(), qWarning(), qCritical() and qFatal() into glog, after optional
/// filtering, and then on to the message handler that was installed before.
///
/// Debug and info messages become INFO lines, warnings WARNING, critical and fatal ones ERROR: after a fatal one Qt
/// aborts, when the earlier handler has seen it too. The lines stand in glog under this handler's source position; the
/// message's own is put before the text.
///
/// \code
/// int main(int argc, char** argv)
/// {
///     google::InitGoogleLogging(argv[0]);
///     Zelkor::Util::QtLogHandler::GetInstance().AddFilter([](QString const& text) { return !text.contains(...); });
/// \endcode
///
/// **Threads.** Messages may come from any thread. Set filters and switches up once, before messages come from other
/// threads: they are not locked.
///
/// **At exit** the earlier handler is put back; messages that come later than that go to it. Qt itself takes care of
/// messages that a filter or an earlier handler causes while one is handled: they go to the standard error stream.
class ZQTUTIL_EXPORT QtLogHandler
{
public:
    /// Sees the text of a message; lets it through with true and drops it with false.
    using TextFilter = std::function<bool(QString const&)>;
    /// Sees the type, the source position and the text of a message; lets it through with true, drops it with false.
    using FullFilter = std::function<bool(QtMsgType, QMessageLogContext const&, QString const&)>;

    /// The one handler of the process, made and installed by the first call. Any thread.
    static QtLogHandler& GetInstance();

    /// Puts the earlier handler back, if this one is installed.
    ~QtLogHandler();

    QtLogHandler(QtLogHandler const&) = delete;
    QtLogHandler& operator=(QtLogHandler const&) = delete;

    /// Installs the handler, unless it is, and remembers the one that it replaces. Filters and switches stay.
    void Install();

    /// Puts back the handler that was replaced, if this one is installed.
    void Uninstall();

    /// Adds a filter behind the others of its kind; an empty one is passed over. Filters cannot be removed.
    ///
    /// Full filters see a message first, then text filters. The first that drops it ends the handling: it is neither
    /// logged nor handed on.
    void AddFilter(TextFilter filter);
    /// \overload
    void AddFilter(FullFilter filter);

    /// Whether the file and line of a message, "undefined:0" where it has none, stand before its text; they do at
    /// first. Release builds of Qt applications have none unless QT_MESSAGELOGCONTEXT is defined.
    void SetEnabledLogFileNameAndLineNumber(bool enabled);

    /// Whether messages are handed on to the earlier handler; they are at first.
    void SetEnabledForwardIntoPreviousHandler(bool enabled);

private:
    QtLogHandler();

    struct ZQTUTIL_NO_EXPORT Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace Util
} // namespace Zelkor
