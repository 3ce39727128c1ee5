#pragma once

namespace Zelkor::Testing
{

/// Describes two orders of Qt to the thread sanitizer. It cannot see them, because Debian's Qt is not built with it:
/// - an object emits a signal before a queued slot of the same object runs on another thread;
/// - a thread finishes before QThread::wait() returns true.
///
/// Does nothing in a build without the thread sanitizer.
void AnnotateQueueOrderForThreadSanitizer();

} // namespace Zelkor::Testing
