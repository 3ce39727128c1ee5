// Measures RemoveDir(), which removes files that have reached a minimum age. In the benchmark, RemoveDir() removes
// 20 000 old files in 200 folders.
//
// For comparison, the benchmark also measures the command `rm -rf` and QDir::removeRecursively(). Both remove files
// without checking their age. The time of `rm` includes the start of the process; "RemovalStart/Rm" measures only the
// start, with an empty folder.

#include "Process.h"
#include "Support.h"

#include <Util/FileUtils.h>

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>

#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Zelkor::Benchmarks
{
namespace
{

constexpr int Folders = 200;
constexpr int FilesPerFolder = 100;

void Age(std::string const& path)
{
    timespec const longAgo[] = {{1000000000, 0}, {1000000000, 0}};
    utimensat(AT_FDCWD, path.c_str(), longAgo, 0);
}

/// Creates the folder \a tree with \a folders subfolders. Each subfolder contains old files.
void MakeTree(std::string const& tree, int folders)
{
    mkdir(tree.c_str(), 0700);
    for (int i = 0; i < folders; ++i) {
        std::string const folder = tree + "/folder" + std::to_string(i);
        mkdir(folder.c_str(), 0700);
        for (int j = 0; j < FilesPerFolder; ++j) {
            std::string const file = folder + "/file" + std::to_string(j);
            close(open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
            Age(file);
        }
        Age(folder);
    }
}

double OursSeconds(std::string const& tree)
{
    return ProcessorSeconds([&] { Util::RemoveDir(QString::fromStdString(tree), 1, true); });
}

double QtSeconds(std::string const& tree)
{
    return ProcessorSeconds([&] { QDir(QString::fromStdString(tree)).removeRecursively(); });
}

double RmSeconds(std::string const& tree)
{
    return ProcessSeconds({"rm", "-rf", tree});
}

void Register(char const* name, double (*seconds)(std::string const& tree), std::string const& tree, int folders)
{
    benchmark::RegisterBenchmark(name,
                                 [=](benchmark::State& state) {
                                     for ([[maybe_unused]] auto _ : state) {
                                         MakeTree(tree, folders);
                                         state.SetIterationTime(seconds(tree));
                                     }
                                     if (access(tree.c_str(), F_OK) == 0) {
                                         state.SkipWithError("The tree was not removed");
                                     }
                                 })
        ->Unit(benchmark::kMillisecond)
        ->Iterations(1) // one removal per repetition, because creating the tree takes a long time
        ->UseManualTime();
}

int Run(int argc, char** argv)
{
    QTemporaryDir const folder;
    std::string const tree = folder.filePath(QStringLiteral("tree")).toStdString();
    Register("Removal/RemoveDir", OursSeconds, tree, Folders);
    Register("Removal/RemoveRecursively", QtSeconds, tree, Folders);
    Register("Removal/Rm", RmSeconds, tree, Folders);
    Register("RemovalStart/Rm", RmSeconds, tree, 0);
    return RunBenchmarks(argc, argv);
}

} // namespace
} // namespace Zelkor::Benchmarks

int main(int argc, char** argv)
{
    QCoreApplication const application(argc, argv);
    return Zelkor::Benchmarks::ExitCodeOf([&] { return Zelkor::Benchmarks::Run(argc, argv); });
}
