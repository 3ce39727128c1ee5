#pragma once

/// \file
/// Receives glog records for display in the window.

#include "CrossThreadQueue.h"

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

/// Receives the records that any thread logs through glog, and emits them as signals on the thread of this object.
class GlogSink : public QObject, public google::LogSink
{
    Q_OBJECT

public:
    explicit GlogSink(QObject* parent = nullptr);
    ~GlogSink() override;

    using google::LogSink::send;
    /// Queues the record. glog calls it on the thread that logs.
    void send(google::LogSeverity severity, char const* fullFileName, char const* baseFileName, int line,
              google::LogMessageTime const& time, char const* message, std::size_t size) override;

Q_SIGNALS:
    /// Emitted with the lines since the last emission, in the order they were logged.
    void LinesReceived(std::vector<LogLine> const& lines);

private:
    CrossThreadQueue<LogLine> queue_;
};

} // namespace Gallery
} // namespace Zelkor
