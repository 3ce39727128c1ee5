#include "LogFilter.h"

namespace Zelkor::Gallery
{

void LogFilter::SetDroppedText(QString const& text)
{
    std::lock_guard<std::mutex> const lock(guard_);
    text_ = text;
}

void LogFilter::SetDropped(QtMsgType type, bool isDropped)
{
    std::lock_guard<std::mutex> const lock(guard_);
    if (isDropped) {
        types_.insert(type);
    } else {
        types_.erase(type);
    }
}

bool LogFilter::LetThrough(QtMsgType type, QString const& message)
{
    std::lock_guard<std::mutex> const lock(guard_);
    bool const isDropped = Drops(type, message);
    dropped_ += isDropped;
    return !isDropped;
}

int LogFilter::Dropped() const
{
    std::lock_guard<std::mutex> const lock(guard_);
    return dropped_;
}

bool LogFilter::Drops(QtMsgType type, QString const& message) const
{
    if (type == QtFatalMsg) {
        return false;
    }
    return types_.count(type) > 0 || (!text_.isEmpty() && message.contains(text_, Qt::CaseInsensitive));
}

} // namespace Zelkor::Gallery
