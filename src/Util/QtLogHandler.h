#pragma once

/// \file
/// Forwarding of Qt's log messages to glog.

#include <Util/Export.h>

#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <functional>
#include <memory>

namespace Zelkor
{
namespace Util
{

/// A Qt message handler that logs the messages of qDebug(), qInfo(), qWarning(), qCritical() and qFatal() with glog.
/// For each message, QtLogHandler first calls the filters, which can drop the message. If no filter drops the message,
/// QtLogHandler logs the message and then calls the previous handler. The previous handler is the message
/// handler that was installed before QtLogHandler.
///
/// | Qt message       | glog severity |
/// |------------------|---------------|
/// | debug, info      | INFO          |
/// | warning          | WARNING       |
/// | critical, fatal  | ERROR         |
///
/// When glog logs a record at FATAL, it aborts the process. Therefore, a fatal Qt message is logged at ERROR, so that
/// the previous handler is called as well. Qt aborts the process afterwards.
///
/// The source position (file and line) of each glog record is a position in the handler's own code. The text of the
/// record begins with the source position of the Qt message.
///
/// \code
/// int main(int argc, char** argv)
/// {
///     google::InitGoogleLogging(argv[0]);
///     Zelkor::Util::QtLogHandler::GetInstance().AddFilter(&IsOfInterest);
///     return Run();
/// }
/// \endcode
///
/// **Threads.** Any thread can log messages. The filters and settings are not protected by a lock: change them before
/// other threads log messages.
///
/// **At exit** the handler restores the previous handler, which then receives all later messages.
///
/// **Nested messages.** If a filter or the previous handler logs a Qt message, Qt writes that message to the standard
/// error stream and does not call this handler.
class ZQTUTIL_EXPORT QtLogHandler
{
public:
    /// A filter function that receives the text of a message. The filter returns true to keep the message, or false to
    /// drop it.
    using TextFilter = std::function<bool(QString const&)>;
    /// A filter function that receives the type, the source position and the text of a message. The filter returns true
    /// to keep the message, or false to drop it.
    using FullFilter = std::function<bool(QtMsgType, QMessageLogContext const&, QString const&)>;

    /// Returns the only handler of the process. The first call creates and installs the handler. Can be called from any
    /// thread.
    static QtLogHandler& GetInstance();

    /// Restores the previous handler if this handler is installed.
    ~QtLogHandler();

    QtLogHandler(QtLogHandler const&) = delete;
    QtLogHandler& operator=(QtLogHandler const&) = delete;

    /// Installs this handler and stores the previous message handler. Does nothing if this handler is already
    /// installed. Does not change the filters and settings.
    void Install();

    /// Restores the message handler that Install() replaced. Does nothing if this handler is not installed.
    void Uninstall();

    /// Adds \a filter, which is a text filter or a full filter. An empty function is ignored. Filters cannot be
    /// removed.
    ///
    /// Full filters are called first, then text filters. The filters of each type are called in the order in which they
    /// were added. If a filter drops the message, no other filter is called, and the message is neither logged nor
    /// passed to the previous handler.
    void AddFilter(TextFilter filter);
    /// \overload
    void AddFilter(FullFilter filter);

    /// Enables or disables the source position before the text of each glog record; initially enabled.
    ///
    /// The position is the file and line of the Qt message, or "undefined:0" if the message has no position. In release
    /// builds, messages have a position only if the application defines QT_MESSAGELOGCONTEXT.
    ///
    /// \param enabled  true to log the position
    void SetEnabledLogFileNameAndLineNumber(bool enabled);

    /// Enables or disables the calls to the previous handler. They are initially enabled.
    ///
    /// \param enabled  true to pass messages to the previous handler after they are logged
    void SetEnabledForwardIntoPreviousHandler(bool enabled);

private:
    QtLogHandler();

    struct ZQTUTIL_NO_EXPORT Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace Util
} // namespace Zelkor
