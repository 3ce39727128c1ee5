#pragma once

#include <QtCore/QStringList>
#include <QtWidgets/QProxyStyle>

#include <functional>

namespace Zelkor::Testing
{

/// Qt's own style, which notes what is polished, each with what a function tells of the widget at that time.
class RecordingStyle : public QProxyStyle
{
public:
    explicit RecordingStyle(std::function<QString(QWidget const& widget)> describe);

    /// "polish" or "unpolish", and the description.
    QStringList log;

    using QProxyStyle::polish;
    using QProxyStyle::unpolish;

    void polish(QWidget* widget) override;
    void unpolish(QWidget* widget) override;

private:
    std::function<QString(QWidget const& widget)> describe_;
};

} // namespace Zelkor::Testing
