#include "LogFilter.h"

namespace Zelkor::Gallery
{

void LogFilter::SetDroppedText(QString const& text)
{
    std::lock_guard<std::mutex> const lock(mutex_);
    text_ = text;
}

void LogFilter::SetDropped(QtMsgType type, bool isDropped)
{
    std::lock_guard<std::mutex> const lock(mutex_);
    if (isDropped) {
        types_.insert(type);
    } else {
        types_.erase(type);
    }
}

bool LogFilter::Accepts(QtMsgType type, QString const& message)
{
    std::lock_guard<std::mutex> const lock(mutex_);
    bool const isDropped = IsDropped(type, message);
    dropped_ += isDropped;
    return !isDropped;
}

int LogFilter::DroppedCount() const
{
    std::lock_guard<std::mutex> const lock(mutex_);
    return dropped_;
}

bool LogFilter::IsDropped(QtMsgType type, QString const& message) const
{
    if (type == QtFatalMsg) {
        return false;
    }
    return types_.count(type) > 0 || (!text_.isEmpty() && message.contains(text_, Qt::CaseInsensitive));
}

} // namespace Zelkor::Gallery
