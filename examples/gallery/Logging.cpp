#include "Logging.h"

#include "PreviousHandler.h"

#include <Util/QtLogHandler.h>

#include <glog/logging.h>

namespace Zelkor::Gallery
{

void StartLogging(char const* program)
{
    for (google::LogSeverity severity = google::GLOG_INFO; severity < google::NUM_SEVERITIES; ++severity) {
        google::SetLogDestination(severity, "");
    }
    // Set these flags explicitly, because the user may have set them with GLOG_* environment variables. A higher
    // minloglevel would hide records from the log sinks. The other flags could make glog write records to the terminal.
    FLAGS_minloglevel = google::GLOG_INFO;
    FLAGS_logtostderr = false;
    FLAGS_alsologtostderr = false;
    FLAGS_stderrthreshold = google::GLOG_FATAL;
    google::InitGoogleLogging(program);
    PreviousHandler::Install();
    Util::QtLogHandler::GetInstance();
}

} // namespace Zelkor::Gallery
