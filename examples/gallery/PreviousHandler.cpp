#include "PreviousHandler.h"

#include "Texts.h"

#include <mutex>

namespace Zelkor::Gallery
{
namespace
{

std::mutex g_mutex;
PreviousHandler* g_latest = nullptr;
QtMessageHandler g_previous = nullptr;

QString TypeName(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return PreviousHandler::tr("debug");
    case QtInfoMsg:
        return PreviousHandler::tr("info");
    case QtWarningMsg:
        return PreviousHandler::tr("warning");
    case QtCriticalMsg:
        return PreviousHandler::tr("critical");
    case QtFatalMsg:
        return PreviousHandler::tr("fatal");
    }
    return QString();
}

bool IsDemo(QMessageLogContext const& context)
{
    return QLatin1String(context.category).startsWith(QLatin1String(PreviousHandler::DemoCategoryPrefix));
}

} // namespace

void PreviousHandler::Install()
{
    g_previous = qInstallMessageHandler(&Handle);
}

PreviousHandler::PreviousHandler(QObject* parent)
    : QObject(parent)
    , queue_(this, [this](std::vector<QString> const& messages) { Q_EMIT MessagesReceived(messages); })
{
    std::lock_guard<std::mutex> const lock(g_mutex);
    g_latest = this;
}

PreviousHandler::~PreviousHandler()
{
    std::lock_guard<std::mutex> const lock(g_mutex);
    if (g_latest == this) {
        g_latest = nullptr;
    }
}

void PreviousHandler::Handle(QtMsgType type, QMessageLogContext const& context, QString const& message)
{
    if (g_previous && !IsDemo(context)) {
        g_previous(type, context, message);
    }
    std::lock_guard<std::mutex> const lock(g_mutex);
    if (g_latest) {
        g_latest->queue_.Push(
            QStringLiteral("%1  %2  %3").arg(TypeName(type), QLatin1String(context.category), OneLineText(message)));
    }
}

} // namespace Zelkor::Gallery
