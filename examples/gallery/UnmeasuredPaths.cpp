#include "UnmeasuredPaths.h"

#include <string_view>
#include <utility>

namespace Zelkor::Gallery
{
namespace
{

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
    // glog calls the sink on the thread that logs.
    bool const isOurs = std::this_thread::get_id() == thread_ && severity == google::GLOG_ERROR;
    if (isOurs && text.substr(0, Prefix.size()) == Prefix) {
        paths_.emplace_back(std::string(text.substr(Prefix.size())));
    }
}

} // namespace Zelkor::Gallery
