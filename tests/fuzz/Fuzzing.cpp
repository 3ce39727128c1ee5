#include <fuzz/Fuzzing.h>

#include <support/sandbox/Users.h>

#include <QtCore/QTemporaryDir>

#include <clocale>
#include <ctime>

#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace Zelkor::Testing
{

std::string const& FuzzFolder()
{
    static QTemporaryDir const folder;
    static std::string const path = folder.path().toStdString();
    return path;
}

} // namespace Zelkor::Testing

int LLVMFuzzerInitialize(int*, char***)
{
    Zelkor::Testing::BecomeOrdinaryUser();
#ifdef __linux__
    // The leak sanitizer traces the process. By default, Linux forbids this after the process has changed its user.
    prctl(PR_SET_DUMPABLE, 1);
#endif
    qputenv("LC_ALL", "C.UTF-8");
    qputenv("TZ", "UTC");
    tzset();
    std::setlocale(LC_ALL, "");
    return 0;
}
