#include <Base/CallStack.h>

#include <boost/stacktrace.hpp>

#include <limits>
#include <sstream>

namespace Zelkor
{

std::string GetCallStack()
{
    std::size_t const ownFrames = 1;
    std::ostringstream text;
    text << boost::stacktrace::stacktrace(ownFrames, std::numeric_limits<std::size_t>::max());
    return text.str();
}

} // namespace Zelkor
