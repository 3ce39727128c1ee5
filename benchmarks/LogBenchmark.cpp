// Measures QtLogHandler: one thread logs messages. Each message contains a number. Every implementation writes the
// messages to a file.
//
// For comparison, the benchmark also measures three alternatives:
// - glog, called directly. Its time is the lower bound, because QtLogHandler logs through glog.
// - Qt's default handler. It writes to the standard error, which the benchmark redirects to a file.
// - spdlog, another log library.

#include "Support.h"

#include <Util/QtLogHandler.h>

#include <QtCore/QDebug>
#include <QtCore/QTemporaryDir>

#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include <cstdio>
#include <memory>
#include <stdexcept>

#include <unistd.h>

#include <glog/logging.h>

namespace Zelkor::Benchmarks
{
namespace
{

constexpr int Messages = 1000;

template <class Log>
void Measure(benchmark::State& state, Log const& log)
{
    for ([[maybe_unused]] auto _ : state) {
        state.SetIterationTime(ProcessorSeconds([&] {
            for (int i = 0; i < Messages; ++i) {
                log(i);
            }
        }));
    }
}

void LogThroughQt(int number)
{
    qInfo("Frame %d was decoded", number);
}

void LogThroughGlog(int number)
{
    LOG(INFO) << "Frame " << number << " was decoded";
}

void MeasureOurs(benchmark::State& state)
{
    Util::QtLogHandler& handler = Util::QtLogHandler::GetInstance();
    handler.SetEnabledForwardIntoPreviousHandler(false);
    handler.Install();
    Measure(state, LogThroughQt);
    handler.Uninstall();
}

void MeasureQt(benchmark::State& state)
{
    QtMessageHandler const before = qInstallMessageHandler(nullptr);
    Measure(state, LogThroughQt);
    qInstallMessageHandler(before);
}

/// Redirects the standard error of the process to a file during the lifetime of the object.
class StandardErrorInFile
{
public:
    explicit StandardErrorInFile(QString const& path)
        : before_(dup(STDERR_FILENO))
    {
        if (!std::freopen(qPrintable(path), "w", stderr)) {
            throw std::runtime_error("The standard error cannot be redirected to a file");
        }
    }

    ~StandardErrorInFile()
    {
        std::fflush(stderr);
        dup2(before_, STDERR_FILENO);
        close(before_);
    }

    StandardErrorInFile(StandardErrorInFile const&) = delete;
    StandardErrorInFile& operator=(StandardErrorInFile const&) = delete;

private:
    int before_;
};

void Register(char const* name, void (*measure)(benchmark::State&))
{
    benchmark::RegisterBenchmark(name, measure)->Unit(benchmark::kMicrosecond)->UseManualTime();
}

int Run(int argc, char** argv)
{
    QTemporaryDir const folder;
    google::InitGoogleLogging(argv[0]);
    google::SetStderrLogging(google::GLOG_FATAL);
    google::SetLogDestination(google::GLOG_INFO, qPrintable(folder.filePath(QStringLiteral("glog."))));

    auto const spdlogger = spdlog::basic_logger_mt("file", folder.filePath(QStringLiteral("spdlog")).toStdString());

    Register("Log/QtLogHandler", MeasureOurs);
    Register("Log/Glog", [](benchmark::State& state) { Measure(state, LogThroughGlog); });
    Register("Log/QtDefault", MeasureQt);
    benchmark::RegisterBenchmark("Log/Spdlog",
                                 [&spdlogger](benchmark::State& state) {
                                     Measure(state,
                                             [&](int number) { spdlogger->info("Frame {} was decoded", number); });
                                 })
        ->Unit(benchmark::kMicrosecond)
        ->UseManualTime();

    StandardErrorInFile const redirection(folder.filePath(QStringLiteral("qt")));
    return RunBenchmarks(argc, argv);
}

} // namespace
} // namespace Zelkor::Benchmarks

int main(int argc, char** argv)
{
    QCoreApplication const application(argc, argv);
    return Zelkor::Benchmarks::ExitCodeOf([&] { return Zelkor::Benchmarks::Run(argc, argv); });
}
