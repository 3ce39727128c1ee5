#include <Util/Platforms/FolderAccess.h>

#include <QtCore/QFileInfo>

#include <algorithm>
#include <vector>

#include <unistd.h>

namespace Zelkor::Util
{
namespace
{

bool IsInGroup(gid_t group)
{
    int const count = getgroups(0, nullptr);
    if (count >= 1) {
        std::vector<gid_t> groups(static_cast<std::size_t>(count));
        int const fetched = std::max(getgroups(count, groups.data()), 0);
        if (std::find(groups.begin(), groups.begin() + fetched, group) != groups.begin() + fetched) {
            return true;
        }
    }
    return group == getegid();
}

} // namespace

// Required behaviour: this function does not follow the kernel's permission rule. The documentation of
// CanCreateFileIn() describes the required rule.
bool MayCreateFileIn(QString const& folder)
{
    QFileInfo const info(folder);
    QFileDevice::Permissions const permissions = info.permissions();
    return permissions.testFlag(QFileDevice::WriteOther) ||
           (permissions.testFlag(QFileDevice::WriteGroup) && IsInGroup(info.groupId())) ||
           (permissions.testFlag(QFileDevice::WriteUser) && info.ownerId() == geteuid());
}

} // namespace Zelkor::Util
