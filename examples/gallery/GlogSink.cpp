#include "GlogSink.h"

#include "Texts.h"

#include <Util/StringUtils.h>

#include <string>

namespace Zelkor::Gallery
{

GlogSink::GlogSink(QObject* parent)
    : QObject(parent)
    , queue_(this, [this](std::vector<LogLine> const& lines) { Q_EMIT LinesReceived(lines); })
{
    google::AddLogSink(this);
}

GlogSink::~GlogSink()
{
    google::RemoveLogSink(this);
}

// This function must not cause Qt messages. glog holds its locks during the call, and QtLogHandler would log the
// messages through glog. The result would be a deadlock.
void GlogSink::send(google::LogSeverity severity, char const* /*fullFileName*/, char const* baseFileName, int line,
                    google::LogMessageTime const& /*time*/, char const* message, std::size_t size)
{
    QString const source = Util::Utf8ToQString(baseFileName + (":" + std::to_string(line)));
    queue_.Push({severity, source, OneLineText(Util::Utf8ToQString(std::string(message, size)))});
}

} // namespace Zelkor::Gallery
