#include "Terminal.h"

#include <Util/StdStreams.h>

#include <QtCore/QCoreApplication>

#include <unistd.h>

namespace Zelkor::Gallery
{
namespace
{

// The maximum length of a name in characters. Some characters are two columns wide on a terminal, so a longer name
// could make the line wider than the terminal.
constexpr int MaxName = 24;
constexpr char ClearLine[] = "\r\x1b[K";

struct Text
{
    Q_DECLARE_TR_FUNCTIONS(GalleryTerminal)
};

void Write(ConsoleOutputStream* stream, QString const& text)
{
    *stream << text;
    stream->flush();
}

QString Shortened(QString const& name)
{
    return name.size() <= MaxName ? name : name.left(MaxName - 1) + QChar(0x2026);
}

} // namespace

void UseUtf8OnTerminal()
{
    for (ConsoleOutputStream* const stream : {qoutPtr, qerrPtr}) {
        stream->setCodec("UTF-8");
    }
}

void Print(QString const& text)
{
    Write(qoutPtr, text + QLatin1Char('\n'));
}

void PrintError(QString const& text)
{
    Write(qerrPtr, text + QLatin1Char('\n'));
}

ProgressLine::ProgressLine()
    : isTerminal_(isatty(STDERR_FILENO) != 0)
{}

void ProgressLine::Show(int done, int total, QString const& name)
{
    QString const count = Text::tr("%1 of %2 measured").arg(done).arg(total);
    if (isTerminal_) {
        Write(qerrPtr, QLatin1String(ClearLine) + count + QLatin1String("  ") + Shortened(name));
        return;
    }
    constexpr int parts = 4;
    int const quarters = total > 0 ? static_cast<int>(static_cast<long long>(done) * parts / total) : parts;
    if (quarters > quarters_) {
        quarters_ = quarters;
        PrintError(count);
    }
}

void ProgressLine::Clear()
{
    if (isTerminal_) {
        Write(qerrPtr, QLatin1String(ClearLine));
    }
}

} // namespace Zelkor::Gallery
