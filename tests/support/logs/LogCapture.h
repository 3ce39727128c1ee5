#pragma once

#include <QtCore/QString>
#include <QtCore/QVector>

#include <glog/logging.h>

namespace Zelkor::Testing
{

/// A line that went into the log.
struct LogLine
{
    google::LogSeverity severity;
    QString file; // as the source named itself, "Util/FileUtils.cpp"
    int line;
    QString text;
};

/// Keeps what is logged while it lives, on any thread. Warnings and errors logged while none lives fail the test that
/// runs: see TestCase.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(LogCapture const&) = delete;
    LogCapture& operator=(LogCapture const&) = delete;

    /// The lines so far, in order.
    QVector<LogLine> Lines() const;

    /// The texts of the lines so far, in order.
    QStringList Texts() const;

private:
    friend class LogWatch;
    QVector<LogLine> lines_;
};

/// The one sink behind all captures; installed by the common test main.
class LogWatch : public google::LogSink
{
public:
    static LogWatch& Instance();

    /// Takes the warnings and errors that no capture was there for.
    QVector<LogLine> TakeUnexpected();

    void send(google::LogSeverity severity, char const* fullFilename, char const* baseFilename, int line,
              google::LogMessageTime const& time, char const* message, size_t messageSize) override;

private:
    QVector<LogLine> unexpected_;
};

} // namespace Zelkor::Testing
