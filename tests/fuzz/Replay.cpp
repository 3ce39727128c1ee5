// The main function of a fuzzer without libFuzzer: tests each file of the folders that are given as arguments.

#include <fuzz/Fuzzing.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <cstdio>
#include <vector>

namespace
{

bool ReplayFile(QString const& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "%s cannot be read\n", qPrintable(path));
        return false;
    }
    // Print the path first: if the test aborts the program, the last line of the output names the input.
    std::printf("%s\n", qPrintable(path));
    std::fflush(stdout);
    // A heap block of the exact size, so that the address sanitizer detects reads behind its end.
    QByteArray const content = file.readAll();
    std::vector<std::uint8_t> const input(content.begin(), content.end());
    LLVMFuzzerTestOneInput(input.data(), input.size());
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    LLVMFuzzerInitialize(&argc, &argv);
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        QDir const folder(QFile::decodeName(argv[i]));
        for (QString const& name : folder.entryList(QDir::Files, QDir::Name)) {
            if (!ReplayFile(folder.filePath(name))) {
                return EXIT_FAILURE;
            }
            ++count;
        }
    }
    std::printf("%d inputs\n", count);
    return count > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
