#include "UnmeasuredPaths.h"

#include <string_view>
#include <utility>

namespace Zelkor::Gallery
{
namespace
{

// The start of the log message of GetPathSize(). "Erorr" has been misspelled since the first release; it is kept
// because log searches depend on it.
constexpr std::string_view Prefix = "Erorr get size for: ";

} // namespace

UnmeasuredPaths::UnmeasuredPaths()
    : thread_(std::this_thread::get_id())
{
    google::AddLogSink(this);
}

UnmeasuredPaths::~UnmeasuredPaths()
{
    google::RemoveLogSink(this);
}

std::vector<ioPath> UnmeasuredPaths::Take()
{
    return std::exchange(paths_, {});
}

void UnmeasuredPaths::send(google::LogSeverity severity, char const* /*fullFileName*/, char const* /*baseFileName*/,
                           int /*line*/, google::LogMessageTime const& /*time*/, char const* message, std::size_t size)
{
    std::string_view const text(message, size);
    bool const isErrorOfThread = std::this_thread::get_id() == thread_ && severity == google::GLOG_ERROR;
    if (isErrorOfThread && text.substr(0, Prefix.size()) == Prefix) {
        paths_.emplace_back(std::string(text.substr(Prefix.size())));
    }
}

} // namespace Zelkor::Gallery
