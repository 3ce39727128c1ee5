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
    TheState().programsFolder = folder;
}

void FailLoginItems(LoginItemsCall call)
{
    TheState().failingLoginItems = call;
}

QStringList OpenedUrls()
{
    return TheState().openedUrls;
}

QList<QStringList> FileViewerRequests()
{
    return TheState().fileViewerRequests;
}

} // namespace Zelkor::TestBed
