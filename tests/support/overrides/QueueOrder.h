#pragma once

namespace Zelkor::Testing
{

/// Debian's Qt is not built with the thread sanitizer, which therefore cannot see that a signal is emitted before the
/// queued slot runs on the other thread, and that a thread has ended when QThread::wait() returns. This tells it
/// exactly that, for a signal of an object to its own slot, and nothing more. Does nothing in a build without the
/// sanitizer.
void TellQueueOrderToThreadSanitizer();

} // namespace Zelkor::Testing
