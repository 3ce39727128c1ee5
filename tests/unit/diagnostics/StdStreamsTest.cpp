#include <support/TestCase.h>
#include <support/Timeouts.h>
#include <support/processes/ChildMain.h>
#include <support/processes/ChildProcess.h>

#include <Util/StdStreams.h>

#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <array>
#include <cstdio>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

using namespace Zelkor::Testing;

static_assert(std::is_base_of_v<QTextStream, ConsoleOutputStream>);
static_assert(std::is_convertible_v<ConsoleOutputStream*, QTextStream*>); // true only for public inheritance
static_assert(sizeof(ConsoleOutputStream) == sizeof(QTextStream));
static_assert(std::has_virtual_destructor_v<ConsoleOutputStream> && !std::is_final_v<ConsoleOutputStream>);
static_assert(std::is_constructible_v<ConsoleOutputStream, FILE*> &&
              !std::is_convertible_v<FILE*, ConsoleOutputStream>);
static_assert(!std::is_default_constructible_v<ConsoleOutputStream>);
static_assert(!std::is_copy_constructible_v<ConsoleOutputStream> && !std::is_copy_assignable_v<ConsoleOutputStream>);
static_assert(!std::is_move_constructible_v<ConsoleOutputStream> && !std::is_move_assignable_v<ConsoleOutputStream>);

static_assert(std::is_default_constructible_v<QtStdStreamsInitializer>);
static_assert(!std::is_polymorphic_v<QtStdStreamsInitializer> && !std::is_final_v<QtStdStreamsInitializer>);
static_assert(sizeof(QtStdStreamsInitializer) == sizeof(QTextStream) + 2 * sizeof(ConsoleOutputStream));
static_assert(!std::is_copy_constructible_v<QtStdStreamsInitializer> &&
              !std::is_copy_assignable_v<QtStdStreamsInitializer>);
static_assert(!std::is_move_constructible_v<QtStdStreamsInitializer> &&
              !std::is_move_assignable_v<QtStdStreamsInitializer>);

static_assert(std::is_same_v<decltype(qinPtr), QTextStream*>);
static_assert(std::is_same_v<decltype(qoutPtr), ConsoleOutputStream*>);
static_assert(std::is_same_v<decltype(qerrPtr), ConsoleOutputStream*>);

template <class Value>
using Written = decltype(std::declval<ConsoleOutputStream&>() << std::declval<Value>());

static_assert(std::is_same_v<Written<QString const&>, ConsoleOutputStream&>);
static_assert(std::is_same_v<Written<QString&>, ConsoleOutputStream&>);
static_assert(std::is_same_v<Written<QString>, ConsoleOutputStream&>);
static_assert(std::is_same_v<Written<int>, QTextStream&>);
static_assert(std::is_same_v<Written<double>, QTextStream&>);
static_assert(std::is_same_v<Written<char>, QTextStream&>);
static_assert(std::is_same_v<Written<char const*>, QTextStream&>);
static_assert(std::is_same_v<Written<QByteArray const&>, QTextStream&>);
static_assert(std::is_same_v<Written<QLatin1String>, QTextStream&>);

namespace
{

struct Pointers
{
    QTextStream* in;
    ConsoleOutputStream* out;
    ConsoleOutputStream* error;
};

Pointers CurrentPointers()
{
    return {qinPtr, qoutPtr, qerrPtr};
}

bool AreNull(Pointers const& pointers)
{
    return !pointers.in && !pointers.out && !pointers.error;
}

// The values of the global stream pointers before main() runs. At this time, no QtStdStreamsInitializer exists yet.
Pointers const pointersWhenLoaded = CurrentPointers();

long long SizeOfStandardOutput()
{
    struct stat status;
    return fstat(STDOUT_FILENO, &status) == 0 ? static_cast<long long>(status.st_size) : -1;
}

// --- Functions that run in child processes

void WriteToBoth()
{
    QtStdStreamsInitializer const streams;
    *qoutPtr << QStringLiteral("to output\n");
    *qerrPtr << QStringLiteral("to error\n");
}

void ExitWithoutFlush()
{
    QtStdStreamsInitializer const streams;
    *qoutPtr << QStringLiteral("lost");
    *qerrPtr << QStringLiteral("lost");
    _exit(0);
}

void UseStaticStreams()
{
    static QtStdStreamsInitializer const streams;
    *qoutPtr << QStringLiteral("to output");
    *qerrPtr << QStringLiteral("to error");
}

void UseStreamsTwice()
{
    std::printf("a");
    std::fflush(stdout);
    for (char const* const text : {"b", "c"}) {
        QtStdStreamsInitializer const streams;
        *qoutPtr << QString::fromLatin1(text);
        *qerrPtr << QString::fromLatin1(text);
    }
    std::printf("d");
    std::fprintf(stderr, "d");
}

void EchoLines()
{
    QtStdStreamsInitializer const streams;
    for (QString line; qinPtr->readLineInto(&line);) {
        *qoutPtr << QLatin1Char('[') << line << QStringLiteral("]\n");
        qoutPtr->flush();
    }
}

void PrintSum()
{
    QtStdStreamsInitializer const streams;
    int first = 0;
    double second = 0;
    QString word;
    *qinPtr >> first >> second >> word;
    *qoutPtr << QStringLiteral("sum ") << first + second << ' ' << word;
}

void ReadInputAfterwards()
{
    QString line;
    {
        QtStdStreamsInitializer const streams;
        line = qinPtr->read(0);
    }
    int const next = std::getchar();
    std::printf("%d", next);
}

constexpr ChildMain childMains[] = {
    {"WriteToBoth", WriteToBoth},
    {"ExitWithoutFlush", ExitWithoutFlush},
    {"UseStaticStreams", UseStaticStreams},
    {"UseStreamsTwice", UseStreamsTwice},
    {"EchoLines", EchoLines},
    {"PrintSum", PrintSum},
    {"ReadInputAfterwards", ReadInputAfterwards},
};

// --- Helpers of the tests

bool WaitForSuccess(QProcess& process)
{
    bool const isFinished = process.state() == QProcess::NotRunning || process.waitForFinished(TimeoutMs);
    return isFinished && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

/// Runs \a childMain in the child process \a process, with \a input as standard input. Returns true if the child
/// process succeeds.
bool Run(QProcess& process, char const* childMain, QByteArray const& input = QByteArray())
{
    StartChildMain(process, childMain);
    process.write(input);
    process.closeWriteChannel();
    return WaitForSuccess(process);
}

/// A write to a RecordingFile, and the values of the global stream pointers at the time of the write.
struct Flush
{
    QByteArray file;
    QByteArray text;
    Pointers pointers;
};

/// A FILE stream that records each write as a Flush object in a list.
class RecordingFile
{
public:
    RecordingFile(QByteArray name, std::vector<Flush>& flushes)
        : name_(std::move(name))
        , flushes_(flushes)
        , file_(fopencookie(this, "w", {nullptr, Write, nullptr, nullptr}))
    {}
    ~RecordingFile() { std::fclose(file_); }
    RecordingFile(RecordingFile const&) = delete;
    RecordingFile& operator=(RecordingFile const&) = delete;

    operator FILE*() const { return file_; }

private:
    static ssize_t Write(void* cookie, char const* text, size_t size)
    {
        auto const* const self = static_cast<RecordingFile const*>(cookie);
        self->flushes_.push_back({self->name_, QByteArray(text, static_cast<int>(size)), CurrentPointers()});
        return static_cast<ssize_t>(size);
    }

    QByteArray name_;
    std::vector<Flush>& flushes_;
    FILE* file_;
};

/// Replaces stdout and stderr with recording files during its lifetime.
class RecordingStandardFiles
{
public:
    explicit RecordingStandardFiles(std::vector<Flush>& flushes)
        : out_("output", flushes)
        , error_("error", flushes)
    {
        std::fflush(stdout);
        stdout = out_;
        stderr = error_;
    }
    ~RecordingStandardFiles()
    {
        stdout = realOut_;
        stderr = realError_;
    }
    RecordingStandardFiles(RecordingStandardFiles const&) = delete;
    RecordingStandardFiles& operator=(RecordingStandardFiles const&) = delete;

private:
    RecordingFile out_;
    RecordingFile error_;
    FILE* const realOut_ = stdout;
    FILE* const realError_ = stderr;
};

QByteArray ContentOf(FILE* file)
{
    std::rewind(file);
    std::array<char, 1000> content{};
    return QByteArray(content.data(), static_cast<int>(std::fread(content.data(), 1, content.size(), file)));
}

struct CloseFile
{
    void operator()(FILE* file) const { std::fclose(file); }
};

using FileOwner = std::unique_ptr<FILE, CloseFile>;

} // namespace

class StdStreamsTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void pointersAreNullWithoutAnInitializer()
    {
        QVERIFY(AreNull(pointersWhenLoaded));
        QVERIFY(AreNull(CurrentPointers()));
    }

    void pointersAreSetDuringTheLifetimeOfAnInitializer()
    {
        {
            QtStdStreamsInitializer const streams;
            QVERIFY(qinPtr && qoutPtr && qerrPtr);
        }
        QVERIFY(AreNull(CurrentPointers()));
        {
            QtStdStreamsInitializer const streams;
            QVERIFY(qinPtr && qoutPtr && qerrPtr);
        }
        QVERIFY(AreNull(CurrentPointers()));
    }

    void streamsAreMembersInDeclarationOrder()
    {
        QtStdStreamsInitializer const streams;
        auto const* const begin = reinterpret_cast<char const*>(&streams);
        QCOMPARE(reinterpret_cast<char const*>(qinPtr) - begin, std::ptrdiff_t(0));
        QVERIFY(static_cast<void*>(qinPtr) < static_cast<void*>(qoutPtr));
        QVERIFY(qoutPtr < qerrPtr);
        QVERIFY(reinterpret_cast<char const*>(qerrPtr) < begin + sizeof streams);
    }

    void streamsAreOpenOnTheStandardFiles()
    {
        QtStdStreamsInitializer const streams;
        auto const handleOf = [](QTextStream const& stream) {
            auto const* const file = qobject_cast<QFile const*>(stream.device());
            return file ? file->handle() : -1;
        };
        QCOMPARE(handleOf(*qinPtr), STDIN_FILENO);
        QCOMPARE(handleOf(*qoutPtr), STDOUT_FILENO);
        QCOMPARE(handleOf(*qerrPtr), STDERR_FILENO);
        QCOMPARE(qinPtr->device()->openMode(), QIODevice::OpenMode(QIODevice::ReadWrite));
        QCOMPARE(qoutPtr->device()->openMode(), QIODevice::OpenMode(QIODevice::WriteOnly));
        QCOMPARE(qerrPtr->device()->openMode(), QIODevice::OpenMode(QIODevice::WriteOnly));
    }

    void secondInitializerReplacesThePointers()
    {
        QtStdStreamsInitializer const first;
        Pointers const firstPointers = CurrentPointers();
        QtStdStreamsInitializer const second;
        QVERIFY(qinPtr && qoutPtr && qerrPtr);
        QVERIFY(qinPtr != firstPointers.in);
        QVERIFY(qoutPtr != firstPointers.out);
        QVERIFY(qerrPtr != firstPointers.error);
    }

    void destructionOfEitherInitializerResetsThePointers_data()
    {
        QTest::addColumn<int>("firstDestroyed");
        QTest::newRow("first") << 0;
        QTest::newRow("second") << 1;
    }

    void destructionOfEitherInitializerResetsThePointers()
    {
        QFETCH(int, firstDestroyed);
        std::array<std::optional<QtStdStreamsInitializer>, 2> streams;
        streams[0].emplace();
        streams[1].emplace();
        streams[static_cast<std::size_t>(firstDestroyed)].reset();
        QVERIFY(AreNull(CurrentPointers()));
        streams[static_cast<std::size_t>(1 - firstDestroyed)].reset();
        QVERIFY(AreNull(CurrentPointers()));
    }

    void streamsOfTheFirstInitializerRemainUsable()
    {
        std::vector<Flush> flushes;
        RecordingStandardFiles const files(flushes);
        {
            QtStdStreamsInitializer const first;
            ConsoleOutputStream* const out = qoutPtr;
            {
                QtStdStreamsInitializer const second;
            }
            *out << QStringLiteral("text");
        }
        QCOMPARE(flushes.size(), std::size_t(1));
        QCOMPARE(flushes.front().text, QByteArray("text"));
    }

    void nothingIsWrittenBeforeAFlush()
    {
        std::vector<Flush> flushes;
        RecordingStandardFiles const files(flushes);
        QtStdStreamsInitializer const streams;
        *qoutPtr << QStringLiteral("to output\n");
        *qerrPtr << QStringLiteral("to error\n");
        QCOMPARE(flushes.size(), std::size_t(0));
        qoutPtr->flush();
        QCOMPARE(flushes.size(), std::size_t(1));
        QCOMPARE(flushes.back().file, QByteArray("output"));
        QCOMPARE(flushes.back().text, QByteArray("to output\n"));
        qerrPtr->flush();
        QCOMPARE(flushes.size(), std::size_t(2));
        QCOMPARE(flushes.back().file, QByteArray("error"));
        QCOMPARE(flushes.back().text, QByteArray("to error\n"));
    }

    void destructorResetsThePointersThenFlushesErrorThenOutput()
    {
        std::vector<Flush> flushes;
        RecordingStandardFiles const files(flushes);
        {
            QtStdStreamsInitializer const streams;
            *qoutPtr << QStringLiteral("to output");
            *qerrPtr << QStringLiteral("to error");
        }
        QCOMPARE(flushes.size(), std::size_t(2));
        QCOMPARE(flushes[0].file, QByteArray("error"));
        QCOMPARE(flushes[0].text, QByteArray("to error"));
        QVERIFY(AreNull(flushes[0].pointers));
        QCOMPARE(flushes[1].file, QByteArray("output"));
        QCOMPARE(flushes[1].text, QByteArray("to output"));
        QVERIFY(AreNull(flushes[1].pointers));
    }

    void flushWritesToTheFile()
    {
        QTemporaryDir const folder;
        QString const path = folder.filePath(QStringLiteral("output"));
        // The child process inherits the buffer of stdout. Without this flush, the child process would write the
        // buffered text again.
        std::fflush(stdout);
        QVector<qlonglong> const sizes = RunInChild([&path] {
            QVector<qlonglong> sizesInChild;
            if (std::freopen(QFile::encodeName(path).constData(), "w", stdout)) {
                QtStdStreamsInitializer const streams;
                *qoutPtr << QStringLiteral("text");
                sizesInChild += SizeOfStandardOutput();
                qoutPtr->flush();
                sizesInChild += SizeOfStandardOutput();
                *qoutPtr << QStringLiteral(" more");
                sizesInChild += SizeOfStandardOutput();
            }
            sizesInChild += SizeOfStandardOutput();
            return sizesInChild;
        });
        QCOMPARE(sizes, (QVector<qlonglong>{0, 4, 4, 9}));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("text more"));
    }

    void outputIsLostWithoutAFlush()
    {
        QProcess process;
        QVERIFY(Run(process, "ExitWithoutFlush"));
        QCOMPARE(process.readAllStandardOutput(), QByteArray());
        QCOMPARE(process.readAllStandardError(), QByteArray());
    }

    void eachStreamWritesToItsOwnFile()
    {
        QProcess process;
        QVERIFY(Run(process, "WriteToBoth"));
        QCOMPARE(process.readAllStandardOutput(), QByteArray("to output\n"));
        QCOMPARE(process.readAllStandardError(), QByteArray("to error\n"));
    }

    void errorIsFlushedBeforeOutput()
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        QVERIFY(Run(process, "WriteToBoth"));
        QCOMPARE(process.readAllStandardOutput(), QByteArray("to error\nto output\n"));
    }

    void staticStreamsAreFlushedAtExit()
    {
        QProcess process;
        QVERIFY(Run(process, "UseStaticStreams"));
        QCOMPARE(process.readAllStandardOutput(), QByteArray("to output"));
        QCOMPARE(process.readAllStandardError(), QByteArray("to error"));
    }

    void standardFilesRemainOpen()
    {
        QProcess process;
        QVERIFY(Run(process, "UseStreamsTwice"));
        QCOMPARE(process.readAllStandardOutput(), QByteArray("abcd"));
        QCOMPARE(process.readAllStandardError(), QByteArray("bcd"));
    }

    void standardInputRemainsOpen()
    {
        QProcess process;
        QVERIFY(Run(process, "ReadInputAfterwards", "A"));
        QCOMPARE(process.readAllStandardOutput(), QByteArray("65"));
    }

    void inputIsReadLineByLine_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QByteArray>("output");
        QTest::newRow("empty input") << QByteArray() << QByteArray();
        QTest::newRow("one line") << QByteArray("line\n") << QByteArray("[line]\n");
        QTest::newRow("last line without line feed") << QByteArray("a\nb") << QByteArray("[a]\n[b]\n");
        QTest::newRow("empty lines") << QByteArray("\n\na\n") << QByteArray("[]\n[]\n[a]\n");
        QTest::newRow("Windows line ends") << QByteArray("a\r\nb\r\n") << QByteArray("[a]\n[b]\n");
        QTest::newRow("spaces") << QByteArray(" a  b \n") << QByteArray("[ a  b ]\n");
        QTest::newRow("non-ASCII text") << QByteArray("\xC3\xA4\xE2\x82\xAC\xF0\x9D\x84\x9E\n")
                                        << QByteArray("[\xC3\xA4\xE2\x82\xAC\xF0\x9D\x84\x9E]\n");
        QTest::newRow("long line") << QByteArray(100000, 'x') + '\n' << '[' + QByteArray(100000, 'x') + "]\n";
    }

    void inputIsReadLineByLine()
    {
        QFETCH(QByteArray, input);
        QFETCH(QByteArray, output);
        QProcess process;
        QVERIFY(Run(process, "EchoLines", input));
        QCOMPARE(process.readAllStandardOutput(), output);
    }

    void linesAreReadWhenTheyArrive()
    {
        QProcess process;
        StartChildMain(process, "EchoLines");
        for (QByteArray const& line : {QByteArray("first"), QByteArray("second"), QByteArray("third")}) {
            process.write(line + '\n');
            while (!process.canReadLine() && process.waitForReadyRead(TimeoutMs)) {
            }
            QCOMPARE(process.readLine(), '[' + line + "]\n");
        }
        process.closeWriteChannel();
        QVERIFY(WaitForSuccess(process));
    }

    void valuesAreReadFromInput()
    {
        QProcess process;
        QVERIFY(Run(process, "PrintSum", "40\n 2.5 word"));
        QCOMPARE(process.readAllStandardOutput(), QByteArray("sum 42.5 word"));
    }

    void insertionOfATextReturnsTheStream()
    {
        FileOwner const file(std::tmpfile());
        QVERIFY(file);
        ConsoleOutputStream stream(file.get());
        ConsoleOutputStream& result = stream << QStringLiteral("text");
        QCOMPARE(&result, &stream);
        QTextStream& afterNumber = stream << 1;
        QCOMPARE(&afterNumber, static_cast<QTextStream*>(&stream));
    }

    void insertionsAreChained()
    {
        FileOwner const file(std::tmpfile());
        QVERIFY(file);
        QString const text = QStringLiteral("%1 \u20AC");
        {
            ConsoleOutputStream stream(file.get());
            stream << text << QString() << QStringLiteral(" = ") << 42 << ' ' << 2.5 << " \"a\" " << QLatin1String("b ")
                   << QByteArray("c ") << text.leftRef(2) << Qt::hex << 255 << Qt::endl;
            stream << 1 << QStringLiteral("2");
        }
        QCOMPARE(ContentOf(file.get()), QByteArray("%1 \xE2\x82\xAC = 42 2.5 \"a\" b c %1ff\n12"));
    }

    void formattingAppliesToTexts()
    {
        FileOwner const file(std::tmpfile());
        QVERIFY(file);
        {
            ConsoleOutputStream stream(file.get());
            stream << qSetFieldWidth(5) << Qt::right << QStringLiteral("ab") << QStringLiteral("cd");
        }
        QCOMPARE(ContentOf(file.get()), QByteArray("   ab   cd"));
    }

    void streamWritesToItsFileAndKeepsItOpen()
    {
        FileOwner const file(std::tmpfile());
        QVERIFY(file);
        {
            ConsoleOutputStream stream(file.get());
            QCOMPARE(stream.device()->openMode(), QIODevice::OpenMode(QIODevice::WriteOnly));
            stream << QStringLiteral("a");
        }
        QVERIFY(std::fputs("b", file.get()) >= 0);
        QCOMPARE(ContentOf(file.get()), QByteArray("ab"));
    }

    void destructionThroughTheBaseFlushesTheStream()
    {
        FileOwner const file(std::tmpfile());
        QVERIFY(file);
        std::unique_ptr<QTextStream> stream = std::make_unique<ConsoleOutputStream>(file.get());
        *static_cast<ConsoleOutputStream*>(stream.get()) << QStringLiteral("text");
        QCOMPARE(ContentOf(file.get()), QByteArray());
        stream.reset();
        QCOMPARE(ContentOf(file.get()), QByteArray("text"));
    }
};

int main(int argc, char** argv)
{
    return IsChildMain(argc, argv) ? RunChildMain(argc, argv, childMains) : RunTests<StdStreamsTest>(argc, argv, false);
}

#include "StdStreamsTest.moc"
