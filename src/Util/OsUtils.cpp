#include <Util/OsUtils.h>

#include <climits>

namespace Zelkor::Util
{
namespace
{

constexpr int WordBits = 64;
static_assert(sizeof(void*) * CHAR_BIT == WordBits, "The library is built for 64-bit processes only");

} // namespace

std::string AppBits()
{
    return std::to_string(WordBits);
}

} // namespace Zelkor::Util
