#include <Util/StdStreams.h>

// Design notes
//
// Loading the library must not run code for these streams. The exported names are therefore plain pointers with
// constant initialisation, and the application decides when the streams are created and flushed.

QTextStream* qinPtr = nullptr;
ConsoleOutputStream* qoutPtr = nullptr;
ConsoleOutputStream* qerrPtr = nullptr;

ConsoleOutputStream::ConsoleOutputStream(FILE* file)
    : QTextStream(file, QIODevice::WriteOnly)
{}

ConsoleOutputStream::~ConsoleOutputStream() = default;

ConsoleOutputStream& ConsoleOutputStream::operator<<(QString const& text)
{
    QTextStream::operator<<(text);
    return *this;
}

QtStdStreamsInitializer::QtStdStreamsInitializer()
    : input_(stdin) // deliberately with the default mode of QTextStream, which is ReadWrite
    , output_(stdout)
    , error_(stderr)
{
    qinPtr = &input_;
    qoutPtr = &output_;
    qerrPtr = &error_;
}

QtStdStreamsInitializer::~QtStdStreamsInitializer()
{
    // The streams are destroyed after this body, so no code can reach a destroyed stream through the pointers.
    qinPtr = nullptr;
    qoutPtr = nullptr;
    qerrPtr = nullptr;
}
