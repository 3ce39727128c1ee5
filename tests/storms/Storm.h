#pragma once

// A storm runs random operations on a part of the library. After each step, it compares the library with a simple
// model. A storm is a class with two functions: Step() runs one random operation and the checks, and Finish() runs the
// final checks.

#include <support/overrides/QueueOrder.h>

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#include <sanitizer/common_interface_defs.h>
#define ZQTUTIL_STORM_SANITIZER
#endif
#endif

namespace Zelkor::Testing
{

/// The random numbers of a storm.
class Random
{
public:
    explicit Random(std::uint64_t seed)
        : engine_(seed)
    {}

    /// Returns a number from 0 to \a limit - 1.
    std::size_t Below(std::size_t limit) { return engine_() % limit; }

    /// Returns true with the probability 1 / \a count.
    bool OneIn(std::size_t count) { return Below(count) == 0; }

    /// Returns an element of \a container, which must not be empty.
    template <class Container>
    auto& Pick(Container& container)
    {
        return container[Below(container.size())];
    }

    /// Returns a seed for the random numbers of another thread.
    std::uint64_t Seed() { return engine_(); }

private:
    std::mt19937_64 engine_;
};

/// The seed and the current step of the running storm. If the storm fails, both are printed.
struct StormPosition
{
    std::atomic<std::uint64_t> seed{0};
    std::atomic<long long> step{0};

    static StormPosition& Instance()
    {
        static StormPosition position;
        return position;
    }

    static void Print()
    {
        std::fprintf(stderr, "The storm failed: --seed %llu, step %lld\n",
                     static_cast<unsigned long long>(Instance().seed), Instance().step.load());
    }
};

/// If \a condition is false, prints \a requirement, the seed and the step, and aborts the process. Throws no exception,
/// because exceptions must not pass through Qt's event loop.
inline void Require(bool condition, char const* requirement)
{
    if (!condition) {
        std::fprintf(stderr, "Not fulfilled: %s\n", requirement);
        StormPosition::Print();
        std::abort();
    }
}

/// A message handler that fails the storm for each warning of Qt.
inline void RequireNoQtWarning(QtMsgType type, QMessageLogContext const&, QString const& text)
{
    std::fprintf(stderr, "%s\n", qPrintable(text));
    Require(type == QtDebugMsg || type == QtInfoMsg, "Qt logs no warning");
}

/// Runs a storm of class \a Storm, whose constructor has a parameter of type Random&. \a Application is the class of
/// the application object. Returns the exit status of the process.
template <class Storm, class Application = QCoreApplication>
int RunStorm(int argc, char** argv)
{
    AnnotateQueueOrderForThreadSanitizer();
    Application const application(argc, argv);
    QCommandLineParser parser;
    QCommandLineOption const seedOption(QStringLiteral("seed"), QStringLiteral("The seed (default: random)"),
                                        QStringLiteral("N"));
    QCommandLineOption const secondsOption(QStringLiteral("seconds"), QStringLiteral("The duration"),
                                           QStringLiteral("S"));
    QCommandLineOption const operationsOption(QStringLiteral("operations"),
                                              QStringLiteral("The number of steps (default: 1000)"),
                                              QStringLiteral("N"), QStringLiteral("1000"));
    parser.addOptions({seedOption, secondsOption, operationsOption});
    parser.addHelpOption();
    parser.process(application);

    bool seedIsValid = true;
    bool secondsAreValid = true;
    bool operationsAreValid = true;
    std::uint64_t const seed =
        parser.isSet(seedOption) ? parser.value(seedOption).toULongLong(&seedIsValid) : std::random_device()();
    bool const isTimed = parser.isSet(secondsOption);
    int const seconds = isTimed ? parser.value(secondsOption).toInt(&secondsAreValid) : 0;
    long long const operations = parser.value(operationsOption).toLongLong(&operationsAreValid);
    if (!seedIsValid || !secondsAreValid || !operationsAreValid) {
        std::fprintf(stderr, "The values of the options must be numbers\n");
        return EXIT_FAILURE;
    }

#ifdef ZQTUTIL_STORM_SANITIZER
    __sanitizer_set_death_callback(StormPosition::Print);
#endif
    qInstallMessageHandler(RequireNoQtWarning);
    StormPosition& position = StormPosition::Instance();
    position.seed = seed;
    std::printf("--seed %llu\n", static_cast<unsigned long long>(seed));
    std::fflush(stdout);
    try {
        Random random(seed);
        Storm storm(random);
        QDeadlineTimer const end(seconds * 1000LL);
        while (isTimed ? !end.hasExpired() : position.step < operations) {
            ++position.step;
            storm.Step();
        }
        storm.Finish();
    } catch (...) {
        Require(false, "no exception leaves a step");
    }
    std::printf("%lld operations\n", position.step.load());
    return EXIT_SUCCESS;
}

} // namespace Zelkor::Testing
