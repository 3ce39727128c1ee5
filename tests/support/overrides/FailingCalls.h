#pragma once

#include <QtCore/QByteArray>

namespace Zelkor::Testing
{

/// Lets system calls for files and folders fail while this object exists.
///
/// The object counts the calls to all functions that FailingCalls.cpp replaces, on all threads. Either one call fails,
/// or this call and all later calls fail. A failing call does nothing except setting errno.
class FailingCalls
{
public:
    enum class Extent { OneCall, AllLaterCalls };

    /// \param first   the number of the first call that fails; the calls are numbered from 1
    /// \param extent  determines whether the calls after \a first also fail
    /// \param error   the value of errno after a failing call
    FailingCalls(int first, Extent extent, int error);
    ~FailingCalls();
    FailingCalls(FailingCalls const&) = delete;
    FailingCalls& operator=(FailingCalls const&) = delete;

    /// Returns the number of calls that have failed.
    int FailedCount() const;

    /// Returns the name of the function whose call has failed first. Returns an empty name if no call has failed.
    QByteArray FirstFailed() const;
};

} // namespace Zelkor::Testing
