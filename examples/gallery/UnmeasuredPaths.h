#pragma once

/// \file
/// A class that collects the paths that GetPathSize() could not measure.

#include <Base/IoPath.h>

#include <glog/logging.h>

#include <thread>
#include <vector>

namespace Zelkor
{
namespace Gallery
{

/// A log sink that collects the paths that `Util::GetPathSize` could not measure. GetPathSize() logs a record for each
/// of these paths. Only records of the thread that created the UnmeasuredPaths object are collected.
class UnmeasuredPaths : public google::LogSink
{
public:
    UnmeasuredPaths();
    ~UnmeasuredPaths() override;

    UnmeasuredPaths(UnmeasuredPaths const&) = delete;
    UnmeasuredPaths& operator=(UnmeasuredPaths const&) = delete;

    /// Returns the paths collected since the previous call of Take(), in the order in which they were logged.
    std::vector<ioPath> Take();

    using google::LogSink::send;
    /// Stores the path from \a message if GetPathSize() logged the record on the thread that created this object. glog
    /// calls this function on the thread that logs the record.
    void send(google::LogSeverity severity, char const* fullFileName, char const* baseFileName, int line,
              google::LogMessageTime const& time, char const* message, std::size_t size) override;

private:
    std::thread::id const thread_;
    std::vector<ioPath> paths_;
};

} // namespace Gallery
} // namespace Zelkor
