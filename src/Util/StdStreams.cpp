#include <Util/StdStreams.h>

// Design notes
//
// The streams must not be created when the library is loaded. Therefore, the exported variables are plain pointers with
// constant initialisation, and the application decides when the streams are created and destroyed.

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
    : input_(stdin) // the open mode is deliberately omitted: QTextStream uses its default mode, ReadWrite
    , output_(stdout)
    , error_(stderr)
{
    qinPtr = &input_;
    qoutPtr = &output_;
    qerrPtr = &error_;
}

QtStdStreamsInitializer::~QtStdStreamsInitializer()
{
    // The streams are destroyed after this destructor body. Set the pointers to null first, so that no code can use a
    // destroyed stream.
    qinPtr = nullptr;
    qoutPtr = nullptr;
    qerrPtr = nullptr;
}
