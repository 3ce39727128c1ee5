#pragma once

/// \file
/// The filter for Qt messages. The user sets the filter on the Log page.

#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <mutex>
#include <set>

namespace Zelkor
{
namespace Gallery
{

/// Drops messages by their type or text, and counts the dropped messages. All functions can be called on any thread.
class LogFilter
{
public:
    /// Sets the text that selects the messages to drop. The filter drops messages that contain \a text. The search is
    /// case-insensitive. If \a text is empty, the filter ignores the text of messages.
    void SetDroppedText(QString const& text);

    /// Sets whether messages of \a type are dropped.
    void SetDropped(QtMsgType type, bool isDropped);

    /// Returns true if the message passes the filter. Fatal messages always pass. If the message does not pass,
    /// increases the number of dropped messages.
    bool Accepts(QtMsgType type, QString const& message);

    /// Returns the number of dropped messages.
    int DroppedCount() const;

private:
    bool IsDropped(QtMsgType type, QString const& message) const;

    mutable std::mutex mutex_;
    QString text_;
    std::set<QtMsgType> types_;
    int dropped_ = 0;
};

} // namespace Gallery
} // namespace Zelkor
