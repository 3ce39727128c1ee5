#pragma once

/// \file
/// A function that measures the processor time of external programs.

#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Zelkor::Benchmarks
{

inline double InSeconds(timeval const& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

/// Runs \a command, which consists of a program and its arguments. Returns the processor time of the process in
/// seconds, including the start of the process. Discards the standard output of the program.
///
/// Throws std::runtime_error if the program cannot be started or does not exit with code 0.
inline double ProcessSeconds(std::vector<std::string> command)
{
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string& word : command) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    int status = 0;
    rusage usage{};
    bool const ran = posix_spawnp(&process, arguments.front(), &actions, nullptr, arguments.data(), environ) == 0 &&
                     wait4(process, &status, 0, &usage) == process && status == 0;
    posix_spawn_file_actions_destroy(&actions);
    if (!ran) {
        throw std::runtime_error(command.front() + " cannot be started or fails");
    }
    return InSeconds(usage.ru_utime) + InSeconds(usage.ru_stime);
}

} // namespace Zelkor::Benchmarks
