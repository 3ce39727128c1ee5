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
    : input_(stdin)
    , output_(stdout)
    , error_(stderr)
{
    qinPtr = &input_;
    qoutPtr = &output_;
    qerrPtr = &error_;
}

QtStdStreamsInitializer::~QtStdStreamsInitializer()
{
    qinPtr = nullptr;
    qoutPtr = nullptr;
    qerrPtr = nullptr;
}
