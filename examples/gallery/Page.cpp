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

void Page::ScheduleSampleShown()
{
    QMetaObject::invokeMethod(this, &Page::SampleShown, Qt::QueuedConnection);
}

} // namespace Zelkor::Gallery
