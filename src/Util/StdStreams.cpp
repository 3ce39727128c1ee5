#include <Util/StdStreams.h>

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
    : input(stdin)
    , output(stdout)
    , error(stderr)
{
    qinPtr = &input;
    qoutPtr = &output;
    qerrPtr = &error;
}

QtStdStreamsInitializer::~QtStdStreamsInitializer()
{
    qinPtr = nullptr;
    qoutPtr = nullptr;
    qerrPtr = nullptr;
}
