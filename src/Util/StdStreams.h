#pragma once

/// \file
/// Text streams for the standard input, output and error streams of the process.

#include <Util/Export.h>

#include <QtCore/QTextStream>

#include <cstdio>

/// A text stream that writes to a standard stream. It buffers text until the stream is flushed or destroyed.
class ZQTUTIL_EXPORT ConsoleOutputStream : public QTextStream
{
public:
    /// Creates a stream that writes to \a file. The caller keeps ownership of \a file and must keep it open.
    explicit ConsoleOutputStream(FILE* file);
    /// Flushes the stream. Does not close the file.
    ~ConsoleOutputStream() override;

    using QTextStream::operator<<;
    /// Writes \a text without flushing the stream. Returns the stream.
    ConsoleOutputStream& operator<<(QString const& text);
};

/// Owns the text streams for standard input, output and error. The application creates one instance, as a static object
/// or at the start of `main`.
///
/// A second instance sets #qinPtr, #qoutPtr and #qerrPtr to its own streams. The destruction of either instance sets
/// the three pointers to null.
///
/// **Threads.** The streams are not locked: use them from one thread at a time.
class ZQTUTIL_EXPORT QtStdStreamsInitializer
{
public:
    /// Creates the streams and sets #qinPtr, #qoutPtr and #qerrPtr.
    QtStdStreamsInitializer();
    /// Sets #qinPtr, #qoutPtr and #qerrPtr to null, then flushes and destroys the streams. Does not close stdin, stdout
    /// or stderr.
    ~QtStdStreamsInitializer();

    QtStdStreamsInitializer(QtStdStreamsInitializer const&) = delete;
    QtStdStreamsInitializer& operator=(QtStdStreamsInitializer const&) = delete;

private:
    QTextStream input_;
    ConsoleOutputStream output_;
    ConsoleOutputStream error_;
};

/// The stream for standard input. The pointer is null while no QtStdStreamsInitializer exists.
extern ZQTUTIL_EXPORT QTextStream* qinPtr;
/// The stream for standard output. The pointer is null while no QtStdStreamsInitializer exists.
extern ZQTUTIL_EXPORT ConsoleOutputStream* qoutPtr;
/// The stream for standard error. The pointer is null while no QtStdStreamsInitializer exists.
extern ZQTUTIL_EXPORT ConsoleOutputStream* qerrPtr;
