#include <support/processes/Plays.h>

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QString>

#include <algorithm>

namespace Zelkor::Testing
{

bool IsPlay(int argc, char** argv)
{
    return argc > 1 && qstrcmp(argv[1], playArgument) == 0;
}

int RunPlay(int argc, char** argv, Play const* first, Play const* last)
{
    QCoreApplication const application(argc, argv);
    Play const* const found =
        std::find_if(first, last, [&](Play const& play) { return argc > 2 && qstrcmp(play.name, argv[2]) == 0; });
    if (found == last) {
        return 1;
    }
    found->run();
    return 0;
}

void StartPlay(QProcess& process, char const* play)
{
    process.start(QCoreApplication::applicationFilePath(),
                  {QString::fromLatin1(playArgument), QString::fromLatin1(play)});
}

} // namespace Zelkor::Testing
