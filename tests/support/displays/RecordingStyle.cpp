#include <support/displays/RecordingStyle.h>

#include <QtWidgets/QStyleFactory>

#include <utility>

namespace Zelkor::Testing
{

RecordingStyle::RecordingStyle(std::function<QString(QWidget const& widget)> describe)
    : QProxyStyle(QStyleFactory::create(QStringLiteral("fusion")))
    , describe_(std::move(describe))
{}

void RecordingStyle::polish(QWidget* widget)
{
    log += QLatin1String("polish ") + describe_(*widget);
    QProxyStyle::polish(widget);
}

void RecordingStyle::unpolish(QWidget* widget)
{
    log += QLatin1String("unpolish ") + describe_(*widget);
    QProxyStyle::unpolish(widget);
}

} // namespace Zelkor::Testing
