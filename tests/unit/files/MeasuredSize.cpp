#include <unit/files/MeasuredSize.h>

#include <support/logs/LogCapture.h>
#include <support/sandbox/Users.h>

#include <Util/FileUtils.h>

#include <QtCore/QDataStream>

#include <glog/logging.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace Zelkor::Testing
{
namespace
{

/// Records the paths that GetPathSize() logs, as raw bytes. Calls a function with each path when the path is logged.
class SizelessLog : public google::LogSink
{
public:
    explicit SizelessLog(std::function<void(QByteArray const&)> onSizeless)
        : onSizeless_(std::move(onSizeless))
    {
        google::AddLogSink(this);
    }
    ~SizelessLog() override { google::RemoveLogSink(this); }
    SizelessLog(SizelessLog const&) = delete;
    SizelessLog& operator=(SizelessLog const&) = delete;

    QByteArrayList Paths() const
    {
        QByteArrayList paths = paths_;
        std::sort(paths.begin(), paths.end());
        return paths;
    }

    void send(google::LogSeverity severity, char const* fullFilename, char const*, int, google::LogMessageTime const&,
              char const* message, std::size_t messageSize) override
    {
        static QByteArray const Prefix("Erorr get size for: ");
        QByteArray const text(message, static_cast<int>(messageSize));
        bool const isExpected = severity == google::GLOG_ERROR &&
                                QByteArray(fullFilename) == QByteArray("Util/FileUtils.cpp") && text.startsWith(Prefix);
        paths_ += isExpected ? text.mid(Prefix.size()) : "unexpected log line: " + text;
        if (onSizeless_) {
            onSizeless_(paths_.last());
        }
    }

private:
    LogCapture const capture_;
    std::function<void(QByteArray const&)> onSizeless_;
    QByteArrayList paths_;
};

} // namespace

Measured Measure(std::string const& path, std::function<void(QByteArray const&)> onSizeless)
{
    SizelessLog const log(std::move(onSizeless));
    Bytes const bytes = Util::GetPathSize(ioPath(path));
    return {bytes, log.Paths()};
}

QDataStream& operator<<(QDataStream& stream, Measured const& measured)
{
    return stream << quint64{measured.bytes} << measured.sizeless;
}

QDataStream& operator>>(QDataStream& stream, Measured& measured)
{
    quint64 bytes = 0;
    stream >> bytes >> measured.sizeless;
    measured.bytes = bytes;
    return stream;
}

Measured MeasureAsOrdinaryUser(std::string const& path, std::function<void(QByteArray const&)> const& onSizeless)
{
    return RunAsOrdinaryUser([&] { return Measure(path, onSizeless); });
}

} // namespace Zelkor::Testing
