#pragma once

/// \file
/// The paths that GetPathSize() could not measure.

#include <Base/IoPath.h>

#include <glog/logging.h>

#include <thread>
#include <vector>

namespace Zelkor
{
namespace Gallery
{

/// Collects, as long as it lives, what `Util::GetPathSize` logs on this thread. Others may measure on other threads.
class UnmeasuredPaths : public google::LogSink
{
public:
    UnmeasuredPaths();
    ~UnmeasuredPaths() override;

    UnmeasuredPaths(UnmeasuredPaths const&) = delete;
    UnmeasuredPaths& operator=(UnmeasuredPaths const&) = delete;

    /// The paths since the last call, in the order they were logged.
    std::vector<ioPath> Take();

    using google::LogSink::send;
    void send(google::LogSeverity severity, char const* fullFileName, char const* baseFileName, int line,
              google::LogMessageTime const& time, char const* message, std::size_t size) override;

private:
    std::thread::id const thread_;
    std::vector<ioPath> paths_;
};

} // namespace Gallery
} // namespace Zelkor
