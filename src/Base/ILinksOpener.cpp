#include <Base/ILinksOpener.h>

namespace Zelkor::App
{

ILinksOpener::~ILinksOpener() = default;

} // namespace Zelkor::App
