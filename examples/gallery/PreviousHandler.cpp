#include "PreviousHandler.h"

#include "Texts.h"

#include <mutex>

namespace Zelkor::Gallery
{
namespace
{

std::mutex g_guard;
PreviousHandler* g_latest = nullptr;
QtMessageHandler g_earlier = nullptr;

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
    return QLatin1String(context.category).startsWith(QLatin1String(PreviousHandler::DemoCategories));
}

} // namespace

void PreviousHandler::Install()
{
    g_earlier = qInstallMessageHandler(&Handle);
}

PreviousHandler::PreviousHandler(QObject* parent)
    : QObject(parent)
    , mailbox_(this, [this](std::vector<QString> const& messages) { Q_EMIT Arrived(messages); })
{
    std::lock_guard<std::mutex> const lock(g_guard);
    g_latest = this;
}

PreviousHandler::~PreviousHandler()
{
    std::lock_guard<std::mutex> const lock(g_guard);
    if (g_latest == this) {
        g_latest = nullptr;
    }
}

void PreviousHandler::Handle(QtMsgType type, QMessageLogContext const& context, QString const& message)
{
    if (g_earlier && !IsDemo(context)) {
        g_earlier(type, context, message);
    }
    std::lock_guard<std::mutex> const lock(g_guard);
    if (g_latest) {
        g_latest->mailbox_.Put(
            QStringLiteral("%1  %2  %3").arg(TypeName(type), QLatin1String(context.category), OneLineText(message)));
    }
}

} // namespace Zelkor::Gallery
