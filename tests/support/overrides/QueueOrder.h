#pragma once

namespace Zelkor::Testing
{

/// Informs the thread sanitizer of two happens-before relations that Qt guarantees:
/// - If an object emits a signal and one of its own slots is connected to that signal with a queued connection, the
///   emission happens before the slot runs, even on different threads.
/// - A thread finishes before QThread::wait() returns true.
///
/// The thread sanitizer cannot detect these relations, because Debian's Qt is not built with the thread sanitizer.
///
/// Does nothing in a build without the thread sanitizer.
void AnnotateQueueOrderForThreadSanitizer();

} // namespace Zelkor::Testing
