#pragma once

#include <QtCore/QString>
#include <QtCore/QVector>

#include <glog/logging.h>

namespace Zelkor::Testing
{

/// One record of the glog log.
struct LogLine
{
    google::LogSeverity severity;
    QString file; // source path as passed to the compiler, for example "Util/FileUtils.cpp"
    int line;
    QString text;
};

/// Records all log lines of all threads from its construction to its destruction.
///
/// Captures can be nested; each of them records every line. While no capture exists, a warning or an error fails the
/// current test function (see TestCase).
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

/// The log sink that feeds all captures. RunTests() installs it.
class LogWatch : public google::LogSink
{
public:
    static LogWatch& Instance();

    /// Returns the warnings and errors logged while no capture existed, and clears the list.
    QVector<LogLine> TakeUnexpected();

    /// Called by glog for every log line, on the thread that logs.
    void send(google::LogSeverity severity, char const* fullFilename, char const* baseFilename, int line,
              google::LogMessageTime const& time, char const* message, size_t messageSize) override;

private:
    QVector<LogLine> unexpected_;
};

} // namespace Zelkor::Testing
