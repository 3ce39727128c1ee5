// Measures how long the dynamic linker takes to load a library whose dependencies are already loaded.
//
//     LoadBenchmark --library=FILE [benchmark options]   Measures FILE and two other libraries for comparison.
//                                                        Starts a new process with --load for each repetition.
//     LoadBenchmark --load=FILE                          Loads FILE once. Prints the processor time in nanoseconds and
//                                                        the number of initialisation functions.
//
// The other libraries are KDE frameworks, which also provide utilities for Qt 5 applications.

#include "Support.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>

#include <dlfcn.h>
#include <link.h>

namespace Zelkor::Benchmarks
{
namespace
{

int LoadedObjects()
{
    int count = 0;
    dl_iterate_phdr(
        [](dl_phdr_info*, std::size_t, void* data) {
            ++*static_cast<int*>(data);
            return 0;
        },
        &count);
    return count;
}

/// Returns the number of initialisation functions that the dynamic linker calls when it loads a library. \a handle is
/// the result of dlopen() for the library.
std::size_t InitialisationFunctions(void* handle)
{
    link_map* map = nullptr;
    dlinfo(handle, RTLD_DI_LINKMAP, &map);
    for (ElfW(Dyn) const* entry = map->l_ld; entry->d_tag != DT_NULL; ++entry) {
        if (entry->d_tag == DT_INIT_ARRAYSZ) {
            return entry->d_un.d_val / sizeof(void*);
        }
    }
    return 0;
}

int LoadOnce(char const* library)
{
    // KF5CoreAddons depends on libudev. This program is not linked with libudev, so load it before the measurement.
    dlopen("libudev.so.1", RTLD_NOW | RTLD_GLOBAL);
    int const before = LoadedObjects();
    void* handle = nullptr;
    double const seconds = ProcessorSeconds([&] { handle = dlopen(library, RTLD_NOW); });
    if (!handle) {
        std::fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    if (LoadedObjects() != before + 1) {
        std::fprintf(stderr, "%s was already loaded, or a dependency was loaded with it\n", library);
        return 1;
    }
    std::printf("%.0f %zu\n", seconds * 1e9, InitialisationFunctions(handle));
    return 0;
}

struct Load
{
    double nanoseconds = 0;
    unsigned long functions = 0;
};

Load LoadInNewProcess(std::string const& self, std::string const& library)
{
    std::string const command = "'" + self + "' --load='" + library + "'";
    FILE* const output = popen(command.c_str(), "r");
    if (!output) {
        throw std::runtime_error("Cannot start a process");
    }
    Load load;
    int const read = std::fscanf(output, "%lf %lu", &load.nanoseconds, &load.functions);
    if (pclose(output) != 0 || read != 2) {
        throw std::runtime_error("Cannot load " + library);
    }
    return load;
}

void Measure(benchmark::State& state, std::string const& self, std::string const& library)
{
    Load load;
    for ([[maybe_unused]] auto _ : state) {
        load = LoadInNewProcess(self, library);
        state.SetIterationTime(load.nanoseconds / 1e9);
    }
    state.counters["functions"] = static_cast<double>(load.functions);
}

/// Returns the part of \a argument after \a prefix, for example after "--name=". Returns a null pointer if
/// \a argument does not start with \a prefix.
char const* OptionValue(char const* argument, char const* prefix)
{
    std::size_t const size = std::strlen(prefix);
    return std::strncmp(argument, prefix, size) == 0 ? argument + size : nullptr;
}

int Run(int argc, char** argv)
{
    if (argc == 2) {
        if (char const* const library = OptionValue(argv[1], "--load=")) {
            return LoadOnce(library);
        }
    }
    char const* const ours = argc > 1 ? OptionValue(argv[1], "--library=") : nullptr;
    if (!ours) {
        std::fprintf(stderr, "Usage: LoadBenchmark --library=FILE [benchmark options]\n");
        return 1;
    }
    std::string const self = argv[0];
    argv[1] = argv[0];
    std::array<std::pair<char const*, std::string>, 3> const libraries{{
        {"Load/ZQtUtil", ours},
        {"Load/KF5CoreAddons", "libKF5CoreAddons.so.5"},
        {"Load/KF5WidgetsAddons", "libKF5WidgetsAddons.so.5"},
    }};
    for (auto const& [name, library] : libraries) {
        benchmark::RegisterBenchmark(name,
                                     [self, file = library](benchmark::State& state) { Measure(state, self, file); })
            ->Unit(benchmark::kMicrosecond)
            ->UseManualTime();
    }
    return RunBenchmarks(argc - 1, argv + 1);
}

} // namespace
} // namespace Zelkor::Benchmarks

int main(int argc, char** argv)
{
    return Zelkor::Benchmarks::ExitCodeOf([&] { return Zelkor::Benchmarks::Run(argc, argv); });
}
