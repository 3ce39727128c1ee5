#include "GlogLines.h"

#include "Texts.h"

#include <Util/StringUtils.h>

#include <string>

namespace Zelkor::Gallery
{

GlogLines::GlogLines(QObject* parent)
    : QObject(parent)
    , mailbox_(this, [this](std::vector<LogLine> const& lines) { Q_EMIT Arrived(lines); })
{
    google::AddLogSink(this);
}

GlogLines::~GlogLines()
{
    google::RemoveLogSink(this);
}

// glog holds its locks around this: a message of Qt's in here would come back through QtLogHandler and wait for them.
void GlogLines::send(google::LogSeverity severity, char const* /*fullFileName*/, char const* baseFileName, int line,
                     google::LogMessageTime const& /*time*/, char const* message, std::size_t size)
{
    QString const source = Util::Utf8ToQString(baseFileName + (":" + std::to_string(line)));
    mailbox_.Put({severity, source, OneLineText(Util::Utf8ToQString(std::string(message, size)))});
}

} // namespace Zelkor::Gallery
