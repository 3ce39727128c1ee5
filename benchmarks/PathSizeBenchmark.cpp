// Measures GetPathSize() for three folder trees: one with many folders, one with a chain of nested folders, and one
// with many files in one folder.
//
//     PathSizeBenchmark --trees=FOLDER [--scale=PERCENT] [benchmark options]
//         Creates the trees in FOLDER and measures all implementations.
//     PathSizeBenchmark --walk=NAME FOLDER
//         Computes the size of FOLDER once, with the implementation NAME. run.py uses this mode to count the system
//         calls with `strace`.
//
// For comparison, the benchmark measures several alternatives:
// - Code that reads each folder and calls fstatat() once for each entry. Its time is the lower bound.
// - The command `du`. Its time includes the start of the process. "ProcessStart/Du" measures only the start, with an
//   empty folder.
// - Functions of libraries that traverse folder trees.

#include "Process.h"
#include "Support.h"

#include <Util/FileUtils.h>

#include <boost/filesystem/operations.hpp>

#include <QtCore/QDirIterator>
#include <QtCore/QFileInfo>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <fts.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Zelkor::Benchmarks
{
namespace
{

using Size = unsigned long long;

bool IsDotEntry(char const* name)
{
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

Size OursSize(std::string const& folder)
{
    return Util::GetPathSize(folder);
}

Size FloorSizeAt(int parent, char const* name)
{
    std::unique_ptr<DIR, int (*)(DIR*)> const stream(fdopendir(openat(parent, name, O_RDONLY | O_DIRECTORY)), closedir);
    if (!stream) {
        throw std::runtime_error("A folder does not open");
    }
    int const descriptor = dirfd(stream.get());
    Size size = 0;
    while (dirent const* const entry = readdir(stream.get())) {
        struct stat status;
        if (entry->d_type == DT_DIR) {
            size += IsDotEntry(entry->d_name) ? 0 : FloorSizeAt(descriptor, entry->d_name);
        } else if (fstatat(descriptor, entry->d_name, &status, 0) == 0) {
            size += static_cast<Size>(status.st_size);
        }
    }
    return size;
}

Size FloorSize(std::string const& folder)
{
    return FloorSizeAt(AT_FDCWD, folder.c_str());
}

Size StdSize(std::string const& folder)
{
    Size size = 0;
    for (auto const& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) {
            size += entry.file_size();
        }
    }
    return size;
}

Size BoostSize(std::string const& folder)
{
    Size size = 0;
    for (auto const& entry : boost::filesystem::recursive_directory_iterator(folder)) {
        if (boost::filesystem::is_regular_file(entry.status())) {
            size += boost::filesystem::file_size(entry.path());
        }
    }
    return size;
}

Size QtSize(std::string const& folder)
{
    Size size = 0;
    QDirIterator entries(QString::fromStdString(folder), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        entries.next();
        size += static_cast<Size>(entries.fileInfo().size());
    }
    return size;
}

Size FtsSize(std::string const& folder)
{
    std::vector<char> name(folder.c_str(), folder.c_str() + folder.size() + 1);
    char* const start[] = {name.data(), nullptr};
    std::unique_ptr<FTS, int (*)(FTS*)> const walk(fts_open(start, FTS_PHYSICAL | FTS_NOCHDIR, nullptr), fts_close);
    Size size = 0;
    while (FTSENT const* const entry = fts_read(walk.get())) {
        if (entry->fts_info == FTS_F) {
            size += static_cast<Size>(entry->fts_statp->st_size);
        }
    }
    return size;
}

/// Runs `du` on \a folder and returns its processor time in seconds. Does not check the size that `du` prints, because
/// `du` also counts the sizes of the folders themselves.
double DuSeconds(std::string const& folder)
{
    return ProcessSeconds({"du", "-s", "--apparent-size", "-B1", folder});
}

struct Walk
{
    char const* name;
    Size (*size)(std::string const& folder);
};

constexpr Walk Walks[] = {
    {"GetPathSize", OursSize},      {"GetdentsFstatat", FloorSize}, {"StdFilesystem", StdSize},
    {"BoostFilesystem", BoostSize}, {"QDirIterator", QtSize},       {"Fts", FtsSize},
};

constexpr int FileSize = 100;

/// Creates a sparse file of #FileSize bytes in \a folder. The file needs no disk blocks for its contents.
void MakeFile(std::string const& folder, int number)
{
    std::string const path = folder + "/file" + std::to_string(number);
    int const descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    bool const made = descriptor >= 0 && ftruncate(descriptor, FileSize) == 0;
    close(descriptor);
    if (!made) {
        throw std::runtime_error("Cannot make " + path);
    }
}

void MakeFiles(std::string const& folder, int count)
{
    for (int i = 0; i < count; ++i) {
        MakeFile(folder, i);
    }
}

Size MakeManyFolders(std::string const& tree, int scale)
{
    int const folders = 20 * scale;
    constexpr int filesPerFolder = 100;
    for (int i = 0; i < folders; ++i) {
        std::string const folder = tree + "/folder" + std::to_string(i);
        std::filesystem::create_directory(folder);
        MakeFiles(folder, filesPerFolder);
    }
    return Size{FileSize} * filesPerFolder * static_cast<Size>(folders);
}

Size MakeDeepChain(std::string const& tree, int scale)
{
    int const levels = 10 * scale;
    std::string folder = tree;
    for (int i = 0; i < levels; ++i) {
        folder += "/d";
        std::filesystem::create_directory(folder);
        MakeFile(folder, 0);
    }
    return Size{FileSize} * static_cast<Size>(levels);
}

Size MakeOneFolder(std::string const& tree, int scale)
{
    int const files = 1000 * scale;
    MakeFiles(tree, files);
    return Size{FileSize} * static_cast<Size>(files);
}

struct Tree
{
    char const* name;
    Size (*make)(std::string const& tree, int scale);
};

constexpr Tree Trees[] = {
    {"ManyFolders", MakeManyFolders},
    {"DeepChain", MakeDeepChain},
    {"OneFolder", MakeOneFolder},
};

void Measure(benchmark::State& state, Walk const& walk, std::string const& folder, Size expected)
{
    Size size = walk.size(folder); // This call is not measured. It loads the tree into the kernel's caches.
    for ([[maybe_unused]] auto _ : state) {
        state.SetIterationTime(ProcessorSeconds([&] { size = walk.size(folder); }));
    }
    if (size != expected) {
        state.SkipWithError("The size is wrong");
    }
}

void MeasureDu(benchmark::State& state, std::string const& folder)
{
    for ([[maybe_unused]] auto _ : state) {
        state.SetIterationTime(DuSeconds(folder));
    }
}

benchmark::internal::Benchmark* InMilliseconds(benchmark::internal::Benchmark* registered)
{
    return registered->Unit(benchmark::kMillisecond)->UseManualTime();
}

void Register(Tree const& tree, std::string const& folder, Size expected)
{
    std::string const job = std::string(tree.name) + "/";
    for (Walk const& walk : Walks) {
        InMilliseconds(
            benchmark::RegisterBenchmark((job + walk.name).c_str(), [&walk, folder, expected](benchmark::State& state) {
                Measure(state, walk, folder, expected);
            }));
    }
    InMilliseconds(benchmark::RegisterBenchmark((job + "Du").c_str(),
                                                [folder](benchmark::State& state) { MeasureDu(state, folder); }));
}

int WalkOnce(std::string const& name, std::string const& folder)
{
    for (Walk const& walk : Walks) {
        if (name == walk.name) {
            std::printf("%llu\n", walk.size(folder));
            return 0;
        }
    }
    std::fprintf(stderr, "Unknown walk: %s\n", name.c_str());
    return 1;
}

/// Finds the option "--name=value" in \a argv, removes it, and returns its value. Returns \a fallback if \a argv does
/// not contain the option.
std::string TakeOption(int& argc, char** argv, std::string const& name, std::string const& fallback)
{
    std::string const prefix = "--" + name + "=";
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], prefix.c_str(), prefix.size()) == 0) {
            std::string value = argv[i] + prefix.size();
            std::memmove(argv + i, argv + i + 1, sizeof(char*) * static_cast<std::size_t>(argc - i));
            --argc;
            return value;
        }
    }
    return fallback;
}

int Run(int argc, char** argv)
{
    std::string const walk = TakeOption(argc, argv, "walk", "");
    if (!walk.empty()) {
        return WalkOnce(walk, argc > 1 ? argv[1] : "");
    }
    std::string const trees = TakeOption(argc, argv, "trees", "");
    int const scale = std::stoi(TakeOption(argc, argv, "scale", "100"));
    if (trees.empty()) {
        std::fprintf(stderr, "Usage: PathSizeBenchmark --trees=FOLDER [--scale=PERCENT] [benchmark options]\n");
        return 1;
    }
    std::filesystem::create_directories(trees + "/Empty");
    InMilliseconds(benchmark::RegisterBenchmark(
        "ProcessStart/Du", [trees](benchmark::State& state) { MeasureDu(state, trees + "/Empty"); }));
    for (Tree const& tree : Trees) {
        std::string const folder = trees + "/" + tree.name;
        std::filesystem::create_directories(folder);
        Register(tree, folder, tree.make(folder, scale));
    }
    return RunBenchmarks(argc, argv);
}

} // namespace
} // namespace Zelkor::Benchmarks

int main(int argc, char** argv)
{
    return Zelkor::Benchmarks::ExitCodeOf([&] { return Zelkor::Benchmarks::Run(argc, argv); });
}
