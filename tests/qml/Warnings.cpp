#include "Warnings.h"

#include <support/logs/LogCapture.h>

#include <QtCore/QStringList>

#include <cstdio>
#include <mutex>
#include <utility>

namespace Zelkor::Testing
{
namespace
{

struct QtMessages
{
    std::mutex guard;
    QStringList warnings;
};

QtMessages& Messages()
{
    static QtMessages messages;
    return messages;
}

void HandleQtMessage(QtMsgType type, QMessageLogContext const& /*context*/, QString const& text)
{
    if (type == QtWarningMsg || type == QtCriticalMsg) {
        std::lock_guard<std::mutex> const lock(Messages().guard);
        Messages().warnings += text;
        return;
    }
    std::fprintf(stderr, "%s\n", qUtf8Printable(text));
}

} // namespace

void Warnings::collect()
{
    qInstallMessageHandler(HandleQtMessage);
}

QString Warnings::take()
{
    QStringList warnings;
    {
        std::lock_guard<std::mutex> const lock(Messages().guard);
        warnings = std::exchange(Messages().warnings, {});
    }
    QVector<LogLine> const logged = LogWatch::Instance().TakeUnexpected();
    for (LogLine const& line : logged) {
        warnings += line.text;
    }
    return warnings.join(QLatin1Char('\n'));
}

} // namespace Zelkor::Testing
