#pragma once

/// \file
/// Which of Qt's messages the user wants to see.

#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <mutex>
#include <set>

namespace Zelkor
{
namespace Gallery
{

/// Settings that change while messages are filtered. Any thread.
class LogFilter
{
public:
    /// Drops messages that contain \a text, whatever their case; none when it is empty.
    void SetDroppedText(QString const& text);

    /// Sets whether messages of \a type are dropped.
    void SetDropped(QtMsgType type, bool isDropped);

    /// Whether a message passes; counts those that do not. A fatal one always does.
    bool LetThrough(QtMsgType type, QString const& message);

    /// How many messages have been dropped.
    int Dropped() const;

private:
    bool Drops(QtMsgType type, QString const& message) const;

    mutable std::mutex guard_;
    QString text_;
    std::set<QtMsgType> types_;
    int dropped_ = 0;
};

} // namespace Gallery
} // namespace Zelkor
