#include <Util/QtLogHandler.h>

#include <Util/StringUtils.h>

#include <QtCore/QList>

#include <atomic>
#include <string>
#include <string_view>

#include <glog/logging.h>

// Design notes
//
// Qt does not call a message handler recursively. If a filter or the previous handler logs a Qt message, Qt writes that
// message to the standard error stream instead. Therefore, this handler needs no protection against recursion.
//
// The handler is a function-local static object, so it is destroyed at exit. StaticHandler() is the function that the
// handler installs in Qt. Qt or another message handler can call StaticHandler() even after the handler has been
// destroyed. StaticHandler() then passes messages to the previous handler, which is stored in g_fallbackHandler.

namespace Zelkor::Util
{
namespace
{

// StaticHandler() can be called after the handler has been destroyed. It then uses these two variables, because the
// members of the handler no longer exist.
std::atomic<bool> g_isDestroyed(false);
std::atomic<QtMessageHandler> g_fallbackHandler(nullptr);

template <class Filter, class... Arguments>
bool PassesAll(QList<Filter> const& filters, Arguments const&... arguments)
{
    for (Filter const& filter : filters) {
        if (filter && !filter(arguments...)) {
            return false;
        }
    }
    return true;
}

std::string WithSourcePosition(QMessageLogContext const& context, std::string const& text)
{
    std::string_view const file = context.file ? context.file : "undefined";
    std::string const line = std::to_string(context.line);
    std::string result;
    result.reserve(file.size() + line.size() + text.size() + 2);
    result.append(file).append(1, ':').append(line).append(1, ' ').append(text);
    return result;
}

void WriteToLog(QtMsgType type, std::string const& text)
{
    switch (type) {
    case QtDebugMsg:
    case QtInfoMsg:
        LOG(INFO) << text;
        break;
    case QtWarningMsg:
        LOG(WARNING) << text;
        break;
    case QtCriticalMsg:
    case QtFatalMsg: // not logged at FATAL: glog would abort before the previous handler is called
        LOG(ERROR) << text;
        break;
    }
}

} // namespace

struct QtLogHandler::Impl
{
    static void StaticHandler(QtMsgType type, QMessageLogContext const& context, QString const& message);
    void Handler(QtMsgType type, QMessageLogContext const& context, QString const& message) const;

    bool logFileNameAndLineNumber = true;
    bool forwardIntoPreviousHandler = true;
    bool installed = false;
    QList<TextFilter> textFilters;
    QList<FullFilter> fullFilters;
    QtMessageHandler previousHandler = nullptr;
};

void QtLogHandler::Impl::StaticHandler(QtMsgType type, QMessageLogContext const& context, QString const& message)
{
    if (!g_isDestroyed) {
        GetInstance().impl_->Handler(type, context, message);
    } else if (QtMessageHandler const fallback = g_fallbackHandler) {
        fallback(type, context, message);
    }
}

void QtLogHandler::Impl::Handler(QtMsgType type, QMessageLogContext const& context, QString const& message) const
{
    if (!PassesAll(fullFilters, type, context, message) || !PassesAll(textFilters, message)) {
        return;
    }
    std::string text = QStringToUtf8(message);
    if (logFileNameAndLineNumber) {
        text = WithSourcePosition(context, text);
    }
    WriteToLog(type, text);
    // previousHandler can be StaticHandler, because other code can also install StaticHandler. Calling it here would
    // cause infinite recursion.
    if (forwardIntoPreviousHandler && previousHandler && previousHandler != StaticHandler) {
        previousHandler(type, context, message);
    }
}

QtLogHandler& QtLogHandler::GetInstance()
{
    static QtLogHandler instance;
    return instance;
}

QtLogHandler::QtLogHandler()
    : impl_(std::make_unique<Impl>())
{
    Install();
}

QtLogHandler::~QtLogHandler()
{
    g_fallbackHandler = impl_->previousHandler != Impl::StaticHandler ? impl_->previousHandler : nullptr;
    g_isDestroyed = true;
    Uninstall();
}

void QtLogHandler::Install()
{
    if (impl_->installed) {
        return;
    }
    impl_->previousHandler = qInstallMessageHandler(Impl::StaticHandler);
    impl_->installed = true;
}

void QtLogHandler::Uninstall()
{
    if (!impl_->installed) {
        return;
    }
    qInstallMessageHandler(impl_->previousHandler);
    impl_->installed = false;
}

void QtLogHandler::AddFilter(TextFilter filter)
{
    impl_->textFilters.append(filter);
}

void QtLogHandler::AddFilter(FullFilter filter)
{
    impl_->fullFilters.append(filter);
}

void QtLogHandler::SetEnabledLogFileNameAndLineNumber(bool enabled)
{
    impl_->logFileNameAndLineNumber = enabled;
}

void QtLogHandler::SetEnabledForwardIntoPreviousHandler(bool enabled)
{
    impl_->forwardIntoPreviousHandler = enabled;
}

} // namespace Zelkor::Util
