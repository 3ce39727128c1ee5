#include "State.h"

@implementation ZBLoginItem
- (void)dealloc
{
    [url release];
    [super dealloc];
}
@end

namespace Zelkor::TestBed
{

State& TheState()
{
    static State state;
    return state;
}

void Reset()
{
    for (ZBLoginItem* const item : TheState().loginItems) {
        [item release];
    }
    TheState() = State();
}

void SetMainBundle(QString const& path)
{
    TheState().mainBundle = path;
}

void FailMainBundle(MainBundleCall call)
{
    TheState().failingMainBundle = call;
}

void SetSystemVersion(QString const& version)
{
    TheState().systemVersion = version;
}

void SetProgramsFolder(QString const& folder)
{
    TheState().programs = folder;
}

void FailLoginItems(LoginItemsCall call)
{
    TheState().failing = call;
}

QStringList OpenedUrls()
{
    return TheState().opened;
}

QStringList FileViewerRequests()
{
    return TheState().fileViewer;
}

} // namespace Zelkor::TestBed
