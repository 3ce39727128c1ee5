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

/// Collects the paths that `Util::GetPathSize` logs as unmeasurable on the thread that created the object. Ignores the
/// records of other threads.
class UnmeasuredPaths : public google::LogSink
{
public:
    UnmeasuredPaths();
    ~UnmeasuredPaths() override;

    UnmeasuredPaths(UnmeasuredPaths const&) = delete;
    UnmeasuredPaths& operator=(UnmeasuredPaths const&) = delete;

    /// Returns the paths collected since the last call, in the order they were logged.
    std::vector<ioPath> Take();

    using google::LogSink::send;
    /// Adds the path of a matching record. glog calls it on the thread that logs.
    void send(google::LogSeverity severity, char const* fullFileName, char const* baseFileName, int line,
              google::LogMessageTime const& time, char const* message, std::size_t size) override;

private:
    std::thread::id const thread_;
    std::vector<ioPath> paths_;
};

} // namespace Gallery
} // namespace Zelkor
