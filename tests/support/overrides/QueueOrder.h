#pragma once

namespace Zelkor::Testing
{

/// Informs the thread sanitizer of two happens-before relations that Qt guarantees:
/// - An object emits a signal, and a queued connection connects this signal to a slot of the same object. The emission
///   happens before the slot runs, even if the slot runs on another thread.
/// - A thread finishes before QThread::wait() returns true.
///
/// The thread sanitizer cannot detect these relations, because Debian's Qt is not built with the thread sanitizer.
///
/// Does nothing in a build without the thread sanitizer.
void AnnotateQueueOrderForThreadSanitizer();

} // namespace Zelkor::Testing
