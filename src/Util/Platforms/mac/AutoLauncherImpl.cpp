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
    : impl_(std::make_unique<Impl>())
{}

AutoLauncherImpl::~AutoLauncherImpl() = default;

bool AutoLauncherImpl::IsInStartup(QString const& identifier)
{
    impl_->UpdateStartupAppList();
    return impl_->loginItems.IsInStartup(identifier) || impl_->launchAgents.IsInStartup(identifier);
}

bool AutoLauncherImpl::AddToStartup(QString const& identifier, QString const& executablePath,
                                    QStringList const& arguments)
{
    bool const added = impl_->loginItems.AddToLoginItems(identifier) ||
                       impl_->launchAgents.AddToStartup(identifier, executablePath, arguments);
    if (added) {
        impl_->UpdateStartupAppList();
    }
    return added;
}

bool AutoLauncherImpl::RemoveFromStartup(QString const& identifier)
{
    bool const removed =
        impl_->loginItems.RemoveFromLoginItems(identifier) || impl_->launchAgents.RemoveFromStartup(identifier);
    if (removed) {
        impl_->UpdateStartupAppList();
    }
    return removed;
}

QStringList AutoLauncherImpl::GetStartupApplications()
{
    impl_->UpdateStartupAppList();
    return impl_->loginItems.GetItemsAtStartup() + impl_->launchAgents.GetAppsInStartup();
}

std::shared_ptr<IAutoLauncher> GetAutoLauncherImpl(AutoLauncherImplType)
{
    return std::make_shared<AutoLauncherImpl>();
}

} // namespace Zelkor::Util
