#include <support/sandbox/FileTimes.h>

#include <support/sandbox/Folders.h>

#include <fcntl.h>
#include <sys/stat.h>

namespace Zelkor::Testing
{
namespace
{

void SetTimeAt(int folder, char const* name, timespec const& time)
{
    timespec const times[] = {time, time};
    Check(utimensat(folder, name, times, AT_SYMLINK_NOFOLLOW));
}

} // namespace

Milliseconds Now()
{
    timespec now;
    Check(clock_gettime(CLOCK_REALTIME, &now));
    return Milliseconds{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
}

timespec ToTimespec(Milliseconds time, long nanoseconds)
{
    Milliseconds const seconds = (time >= 0 ? time : time - 999) / 1000;
    return {static_cast<time_t>(seconds), static_cast<long>(time - seconds * 1000) * 1000000 + nanoseconds};
}

void SetTimeAt(int folder, char const* name, Milliseconds time)
{
    SetTimeAt(folder, name, ToTimespec(time, 0));
}

void SetTime(std::string const& path, Milliseconds time, long nanoseconds)
{
    SetTimeAt(AT_FDCWD, path.c_str(), ToTimespec(time, nanoseconds));
}

void SetAge(std::string const& path, Milliseconds age)
{
    SetTime(path, Now() - age);
}

void SetAgeOfEntries(std::string const& path, Milliseconds age)
{
    for (std::string const& name : NamesIn(AT_FDCWD, path.c_str())) {
        std::string const entry = std::string(path).append(1, '/').append(name);
        if (IsFolderAt(AT_FDCWD, entry)) {
            SetAgeOfEntries(entry, age);
        }
        SetAge(entry, age);
    }
}

} // namespace Zelkor::Testing
