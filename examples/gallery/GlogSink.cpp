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

// glog holds its locks during the call of this function. Therefore, this function must not cause Qt messages:
// QtLogHandler would log these messages through glog, and glog would wait for its own locks for ever (a deadlock).
void GlogSink::send(google::LogSeverity severity, char const* /*fullFileName*/, char const* baseFileName, int line,
                    google::LogMessageTime const& /*time*/, char const* message, std::size_t size)
{
    QString const source = Util::Utf8ToQString(baseFileName + (":" + std::to_string(line)));
    queue_.Push({severity, source, OneLineText(Util::Utf8ToQString(std::string(message, size)))});
}

} // namespace Zelkor::Gallery
