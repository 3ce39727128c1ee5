#pragma once

/// \file
/// A log sink that receives glog records, so that the Log page can show them.

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
    QString source; // the file and line of the log statement, for example "file.cpp:12"
    QString text;
};

/// Receives the records that all threads log through glog. Emits LinesReceived() with these records on the thread of
/// the GlogSink object.
class GlogSink : public QObject, public google::LogSink
{
    Q_OBJECT

public:
    explicit GlogSink(QObject* parent = nullptr);
    ~GlogSink() override;

    using google::LogSink::send;
    /// Queues the record. glog calls this function on the thread that logs the record.
    void send(google::LogSeverity severity, char const* fullFileName, char const* baseFileName, int line,
              google::LogMessageTime const& time, char const* message, std::size_t size) override;

Q_SIGNALS:
    /// Emitted with all lines that were logged since the previous emission, in the order in which they were logged.
    void LinesReceived(std::vector<LogLine> const& lines);

private:
    CrossThreadQueue<LogLine> queue_;
};

} // namespace Gallery
} // namespace Zelkor
