#pragma once

/// \file
/// The lines of the log for the window.

#include "Mailbox.h"

#include <glog/logging.h>

#include <QtCore/QObject>
#include <QtCore/QString>

#include <vector>

namespace Zelkor
{
namespace Gallery
{

struct LogLine
{
    google::LogSeverity severity;
    QString source; // "file.cpp:12"
    QString text;
};

/// Tells of every line that glog gets from any thread, on the thread of this object.
class GlogLines : public QObject, public google::LogSink
{
    Q_OBJECT

public:
    explicit GlogLines(QObject* parent = nullptr);
    ~GlogLines() override;

    using google::LogSink::send;
    void send(google::LogSeverity severity, char const* fullFileName, char const* baseFileName, int line,
              google::LogMessageTime const& time, char const* message, std::size_t size) override;

Q_SIGNALS:
    void Arrived(std::vector<LogLine> const& lines);

private:
    Mailbox<LogLine> mailbox_;
};

} // namespace Gallery
} // namespace Zelkor
