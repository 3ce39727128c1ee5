#pragma once

/// \file
/// Text streams on the process's standard input, output and error streams.

#include <Util/Export.h>

#include <QtCore/QTextStream>

#include <cstdio>

/// A text stream that writes to one of the standard streams. What is written stays in the stream until it is flushed.
class ZQTUTIL_EXPORT ConsoleOutputStream : public QTextStream
{
public:
    /// A stream that writes to \a file, which stays open and the caller's.
    explicit ConsoleOutputStream(FILE* file);
    /// Flushes.
    ~ConsoleOutputStream() override;

    using QTextStream::operator<<;
    /// Writes \a text, without flushing, and returns the stream.
    ConsoleOutputStream& operator<<(QString const& text);
};

/// Opens the console streams for as long as it lives; an application makes one, as a static or first in `main`.
///
/// A second one takes the pointers over, and the destruction of either sets them to null. The streams are not locked:
/// use them from one thread at a time.
class ZQTUTIL_EXPORT QtStdStreamsInitializer
{
public:
    /// Opens the streams and sets #qinPtr, #qoutPtr and #qerrPtr.
    QtStdStreamsInitializer();
    /// Sets the three pointers to null, then flushes and closes the streams; stdin, stdout and stderr stay open.
    ~QtStdStreamsInitializer();

    QtStdStreamsInitializer(QtStdStreamsInitializer const&) = delete;
    QtStdStreamsInitializer& operator=(QtStdStreamsInitializer const&) = delete;

private:
    QTextStream input_;
    ConsoleOutputStream output_;
    ConsoleOutputStream error_;
};

/// The stream on standard input; null while there is no QtStdStreamsInitializer.
extern ZQTUTIL_EXPORT QTextStream* qinPtr;
/// The stream on standard output; null while there is no QtStdStreamsInitializer.
extern ZQTUTIL_EXPORT ConsoleOutputStream* qoutPtr;
/// The stream on standard error; null while there is no QtStdStreamsInitializer.
extern ZQTUTIL_EXPORT ConsoleOutputStream* qerrPtr;
