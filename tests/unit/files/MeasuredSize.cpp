#include <unit/files/MeasuredSize.h>

#include <support/logs/LogCapture.h>
#include <support/sandbox/OrdinaryUser.h>

#include <Util/FileUtils.h>

#include <QtCore/QDataStream>
#include <QtCore/QIODevice>

#include <glog/logging.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace Zelkor::Testing
{
namespace
{

/// Keeps the paths of the lines that something has no size, byte for byte, and calls something at each, in the middle
/// of the walk.
class SizelessLog : public google::LogSink
{
public:
    explicit SizelessLog(std::function<void(QByteArray const&)> atEach)
        : atEach_(std::move(atEach))
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
        bool const asExpected = severity == google::GLOG_ERROR &&
                                QByteArray(fullFilename) == QByteArray("Util/FileUtils.cpp") && text.startsWith(Prefix);
        paths_ += asExpected ? text.mid(Prefix.size()) : "not one of the expected lines: " + text;
        if (atEach_) {
            atEach_(paths_.last());
        }
    }

private:
    LogCapture const capture_;
    std::function<void(QByteArray const&)> atEach_;
    QByteArrayList paths_;
};

QByteArray Packed(Measured const& measured)
{
    QByteArray packed;
    QDataStream stream(&packed, QIODevice::WriteOnly);
    stream << quint64{measured.bytes} << measured.sizeless;
    return packed;
}

Measured Unpacked(QByteArray const& packed)
{
    quint64 bytes = 0;
    Measured measured;
    QDataStream stream(packed);
    stream >> bytes >> measured.sizeless;
    measured.bytes = bytes;
    return measured;
}

} // namespace

Measured Measure(std::string const& path, std::function<void(QByteArray const&)> atEach)
{
    SizelessLog const log(std::move(atEach));
    Bytes const bytes = Util::GetPathSize(ioPath(path));
    return {bytes, log.Paths()};
}

Measured MeasuredByOrdinaryUser(std::function<Measured()> const& measure)
{
    return Unpacked(RunAsOrdinaryUser([&] { return Packed(measure()); }));
}

Measured MeasureAsOrdinaryUser(std::string const& path, std::function<void(QByteArray const&)> const& atEach)
{
    return MeasuredByOrdinaryUser([&] { return Measure(path, atEach); });
}

} // namespace Zelkor::Testing
