#include <Util/QTimeUtils.h>

namespace Zelkor::Util
{
namespace
{

constexpr long long MicrosecondsInMillisecond = 1000;
constexpr long long MicrosecondsInSecond = 1000000;
constexpr long long MillisecondsInDay = 86400000;

} // namespace

QTime AvTimeToQTime(long long microseconds)
{
    // addMSecs() takes an int, which can hold only about 24 days in milliseconds. Remove whole days to avoid overflow.
    auto const milliseconds = static_cast<int>(microseconds / MicrosecondsInMillisecond % MillisecondsInDay);
    return QTime(0, 0, 0, 0).addMSecs(milliseconds);
}

long long QTimeToAvTime(QTime time)
{
    int const seconds = time.hour() * 3600 + time.minute() * 60 + time.second();
    return seconds * MicrosecondsInSecond + time.msec() * MicrosecondsInMillisecond;
}

} // namespace Zelkor::Util
