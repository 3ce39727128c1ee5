#include <Util/Platforms/mac/AutoLauncherImpl.h>

#include <Util/Platforms/mac/LaunchctlStartupImpl.h>
#include <Util/Platforms/mac/LoginItemStartupImpl.h>

namespace Zelkor::Util
{

class AutoLauncherImpl::Impl
{
public:
    void UpdateStartupAppList()
    {
        loginItems.UpdateStartupItems(QStringLiteral("zelkor"));
        launchAgents.UpdatePlistList();
    }

    LoginItemStartupImpl loginItems;
    LaunchctlStartupImpl launchAgents;
};

AutoLauncherImpl::AutoLauncherImpl()
    : impl(std::make_unique<Impl>())
{}

AutoLauncherImpl::~AutoLauncherImpl() = default;

bool AutoLauncherImpl::IsInStartup(QString const& identifier)
{
    impl->UpdateStartupAppList();
    return impl->loginItems.IsInStartup(identifier) || impl->launchAgents.IsInStartup(identifier);
}

bool AutoLauncherImpl::AddToStartup(QString const& identifier, QString const& executablePath,
                                    QStringList const& arguments)
{
    bool const added = impl->loginItems.AddToLoginItems(identifier) ||
                       impl->launchAgents.AddToStartup(identifier, executablePath, arguments);
    if (added) {
        impl->UpdateStartupAppList();
    }
    return added;
}

bool AutoLauncherImpl::RemoveFromStartup(QString const& identifier)
{
    bool const removed =
        impl->loginItems.RemoveFromLoginItems(identifier) || impl->launchAgents.RemoveFromStartup(identifier);
    if (removed) {
        impl->UpdateStartupAppList();
    }
    return removed;
}

QStringList AutoLauncherImpl::GetStartupApplications()
{
    impl->UpdateStartupAppList();
    return impl->loginItems.GetItemsAtStartup() + impl->launchAgents.GetAppsInStartup();
}

std::shared_ptr<IAutoLauncher> GetAutoLauncherImpl(AutoLauncherImplType)
{
    return std::make_shared<AutoLauncherImpl>();
}

} // namespace Zelkor::Util
