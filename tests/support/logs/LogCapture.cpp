#include <support/logs/LogCapture.h>

#include <QtCore/QStringList>

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

namespace Zelkor::Testing
{
namespace
{

// Do not use QMutex here: the thread sanitizer does not recognise locks of QMutex and would report false data races.
std::mutex& Guard()
{
    static std::mutex guard;
    return guard;
}

std::vector<LogCapture*>& Captures()
{
    static std::vector<LogCapture*> captures;
    return captures;
}

} // namespace

LogCapture::LogCapture()
{
    std::lock_guard<std::mutex> const lock(Guard());
    Captures().push_back(this);
}

LogCapture::~LogCapture()
{
    std::lock_guard<std::mutex> const lock(Guard());
    std::vector<LogCapture*>& captures = Captures();
    captures.erase(std::find(captures.begin(), captures.end(), this));
}

QVector<LogLine> LogCapture::Lines() const
{
    std::lock_guard<std::mutex> const lock(Guard());
    return lines_;
}

QStringList LogCapture::Texts() const
{
    QStringList texts;
    QVector<LogLine> const lines = Lines();
    for (LogLine const& line : lines) {
        texts += line.text;
    }
    return texts;
}

LogWatch& LogWatch::Instance()
{
    static LogWatch watch;
    return watch;
}

QVector<LogLine> LogWatch::TakeUnexpected()
{
    std::lock_guard<std::mutex> const lock(Guard());
    return std::exchange(unexpected_, {});
}

void LogWatch::send(google::LogSeverity severity, char const* fullFilename, char const* /*baseFilename*/, int line,
                    google::LogMessageTime const& /*time*/, char const* message, size_t messageSize)
{
    std::lock_guard<std::mutex> const lock(Guard());
    LogLine const logged{severity, QString::fromUtf8(fullFilename), line,
                         QString::fromUtf8(message, static_cast<int>(messageSize))};
    for (LogCapture* const capture : Captures()) {
        capture->lines_ += logged;
    }
    if (Captures().empty() && severity >= google::GLOG_WARNING) {
        unexpected_ += logged;
    }
}

} // namespace Zelkor::Testing
