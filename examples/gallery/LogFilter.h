#pragma once

/// \file
/// The filter for Qt messages that the user sets on the Log page.

#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <mutex>
#include <set>

namespace Zelkor
{
namespace Gallery
{

/// Drops messages by their type or text, and counts them. All functions can be called on any thread.
class LogFilter
{
public:
    /// Drops messages that contain \a text, ignoring case. An empty \a text drops none.
    void SetDroppedText(QString const& text);

    /// Sets whether messages of \a type are dropped.
    void SetDropped(QtMsgType type, bool isDropped);

    /// Returns true if the message passes the filter. Fatal messages always pass. Counts the others that do not.
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
