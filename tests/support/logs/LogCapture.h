#pragma once

#include <QtCore/QString>
#include <QtCore/QVector>

#include <glog/logging.h>

namespace Zelkor::Testing
{

/// A log line of glog: one message and the source line that logged it.
struct LogLine
{
    google::LogSeverity severity;
    QString file; // the source path as passed to the compiler, for example "Util/FileUtils.cpp"
    int line;
    QString text;
};

/// Records all log lines of glog, from all threads, while this object exists.
///
/// Several LogCapture objects can exist at the same time; each of them records every line. If a warning or an error is
/// logged while no LogCapture exists, the current test function fails (see TestCase).
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(LogCapture const&) = delete;
    LogCapture& operator=(LogCapture const&) = delete;

    /// Returns the lines recorded so far, in the order of logging. Can be called from any thread.
    QVector<LogLine> Lines() const;

    /// Returns the texts of the lines recorded so far, in the order of logging. Can be called from any thread.
    QStringList Texts() const;

private:
    friend class LogWatch;
    QVector<LogLine> lines_;
};

/// The glog sink that passes each log line to all LogCapture objects. RunTests() installs it.
class LogWatch : public google::LogSink
{
public:
    static LogWatch& Instance();

    /// Returns the warnings and errors that were logged since the previous call of this function. Omits the messages
    /// that were logged while a LogCapture existed.
    QVector<LogLine> TakeUnexpected();

    /// glog calls this function for every log line, on the thread that logs the line.
    void send(google::LogSeverity severity, char const* fullFilename, char const* baseFilename, int line,
              google::LogMessageTime const& time, char const* message, size_t messageSize) override;

private:
    QVector<LogLine> unexpected_;
};

} // namespace Zelkor::Testing
