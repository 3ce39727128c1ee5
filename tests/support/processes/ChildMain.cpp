#include <support/processes/ChildMain.h>

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QString>

#include <algorithm>

namespace Zelkor::Testing
{

bool IsChildMain(int argc, char** argv)
{
    return argc > 1 && qstrcmp(argv[1], childMainArgument) == 0;
}

int RunChildMain(int argc, char** argv, ChildMain const* first, ChildMain const* last)
{
    QCoreApplication const application(argc, argv);
    ChildMain const* const found = std::find_if(
        first, last, [&](ChildMain const& function) { return argc > 2 && qstrcmp(function.name, argv[2]) == 0; });
    if (found == last) {
        return 1;
    }
    found->run();
    return 0;
}

void StartChildMain(QProcess& process, char const* name, QStringList const& arguments)
{
    StartChildMain(process, QCoreApplication::applicationFilePath(), name, arguments);
}

void StartChildMain(QProcess& process, QString const& program, char const* name, QStringList const& arguments)
{
    process.start(program, QStringList{QString::fromLatin1(childMainArgument), QString::fromLatin1(name)} + arguments);
}

} // namespace Zelkor::Testing
