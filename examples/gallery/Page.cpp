#include "Page.h"

namespace Zelkor::Gallery
{

void Page::SetFolder(ioPath const& /*folder*/) {}

void Page::Cancel() {}

bool Page::IsBusy() const
{
    return false;
}

} // namespace Zelkor::Gallery
