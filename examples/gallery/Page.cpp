#include "Page.h"

namespace Zelkor::Gallery
{

void Page::SetFolder(ioPath const& /*folder*/) {}

std::vector<SampleDialog> Page::SampleDialogs()
{
    return {};
}

void Page::Cancel() {}

bool Page::IsBusy() const
{
    return false;
}

} // namespace Zelkor::Gallery
