#include "Terminal.h"

#include <Util/StringUtils.h>

#include <QtCore/QCoreApplication>

#include <cstdio>

#include <unistd.h>

namespace Zelkor::Gallery
{
namespace
{

// Names longer than this could wrap the line, even where a letter is two columns wide.
constexpr int MaxName = 24;
constexpr char ClearLine[] = "\r\x1b[K";

struct Text
{
    Q_DECLARE_TR_FUNCTIONS(GalleryTerminal)
};

void Write(std::FILE* stream, QString const& text)
{
    std::string const utf8 = Util::QStringToUtf8(text);
    std::fwrite(utf8.data(), 1, utf8.size(), stream);
    std::fflush(stream);
}

QString Shortened(QString const& name)
{
    return name.size() <= MaxName ? name : name.left(MaxName - 1) + QChar(0x2026);
}

} // namespace

void Print(QString const& text)
{
    Write(stdout, text + QLatin1Char('\n'));
}

void PrintError(QString const& text)
{
    Write(stderr, text + QLatin1Char('\n'));
}

ProgressLine::ProgressLine()
    : isTerminal_(isatty(STDERR_FILENO) != 0)
{}

void ProgressLine::Show(int done, int total, QString const& what)
{
    QString const count = Text::tr("%1 of %2 measured").arg(done).arg(total);
    if (isTerminal_) {
        Write(stderr, QLatin1String(ClearLine) + count + QLatin1String("  ") + Shortened(what));
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
        Write(stderr, QLatin1String(ClearLine));
    }
}

} // namespace Zelkor::Gallery
