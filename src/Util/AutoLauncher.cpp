#include <Util/AutoLauncher.h>

namespace Zelkor::Util
{

IAutoLauncher::~IAutoLauncher() = default;

} // namespace Zelkor::Util
