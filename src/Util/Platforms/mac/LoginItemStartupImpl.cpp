// A login item does not store the identifier of its application. IdentifierOf() builds the identifier from two bundles:
// the bundle of the helper application, which is the login item, and the bundle of the main application. The identifier
// has four parts:
//
// 1. the vendor: the second part of the helper's bundle identifier
// 2. the product: the third part of the main bundle's identifier, without the major version number
// 3. the version: the version of the main bundle
// 4. the flavour: the third part of the helper's bundle identifier
//
// CoreFoundationOwner releases the Core Foundation objects. The functions in LoginItem.cpp compute names and paths.
// They are in a separate file, so that they can be tested without a Mac.

#include <Util/Platforms/mac/LoginItemStartupImpl.h>

#include <Base/SystemVersion.h>
#include <Util/Platforms/mac/CoreFoundationOwner.h>
#include <Util/Platforms/mac/LoginItem.h>

#include <QtCore/QDir>
#include <QtCore/QMap>
#include <QtCore/QUrl>

#include <CoreServices/CoreServices.h>

// LSSharedFileList has been deprecated since OS X 10.11. It is used because it is the only API for the login items that
// users see in their preferences.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

namespace Zelkor::Util
{

namespace
{

using Bundle = CoreFoundationOwner<CFBundleRef>;
using LoginItems = CoreFoundationOwner<LSSharedFileListRef>;
using Url = CoreFoundationOwner<CFURLRef>;

/// A property of a bundle. Maker (the vendor) and Product are parts of the bundle identifier, which is split at the
/// dots. The values of these two enumerators are the indexes of the parts, counted from 0. BundleVersion is not a part
/// of the bundle identifier.
enum InfoParameter { Maker = 1, Product = 2, BundleVersion = 3 };

QString GetQStringFromCFURL(CFURLRef url)
{
    bool const namesLocalhost = Core::GetSystemVersion() < Core::Version(10, 9);
    return PathOfUrlText(QUrl::fromCFURL(url).toString(), namesLocalhost);
}

QString GetIdentifierParameterFromBundle(CFBundleRef bundle, InfoParameter parameter)
{
    CFStringRef const identifier = CFBundleGetIdentifier(bundle);
    return identifier ? BundleIdentifierPart(QString::fromCFString(identifier), parameter) : QString();
}

QString GetVersionFromBundle(CFBundleRef bundle)
{
    CFTypeRef const version = CFBundleGetValueForInfoDictionaryKey(bundle, kCFBundleVersionKey);
    bool const isText = version && CFGetTypeID(version) == CFStringGetTypeID();
    return CompletedBundleVersion(isText ? QString::fromCFString(static_cast<CFStringRef>(version)) : QString());
}

QString GetBundleInfo(Bundle const& bundle, InfoParameter parameter)
{
    if (!bundle) {
        return {};
    }
    switch (parameter) {
    case Maker:
    case Product:
        return GetIdentifierParameterFromBundle(bundle.Get(), parameter);
    case BundleVersion:
        return GetVersionFromBundle(bundle.Get());
    }
    return {};
}

Url CreateFolderUrl(QString const& path)
{
    CoreFoundationOwner<CFStringRef> const text(path.toCFString());
    return Url(CFURLCreateWithFileSystemPath(kCFAllocatorDefault, text.Get(), kCFURLPOSIXPathStyle, true));
}

Bundle CreateBundle(Url const& url)
{
    return Bundle(url ? CFBundleCreate(kCFAllocatorDefault, url.Get()) : nullptr);
}

LoginItems CreateLoginItems()
{
    return LoginItems(LSSharedFileListCreate(kCFAllocatorDefault, kLSSharedFileListSessionLoginItems, nullptr));
}

Url Resolve(LSSharedFileListItemRef item)
{
    CFURLRef url = nullptr;
    OSStatus const status = LSSharedFileListItemResolve(item, 0, &url, nullptr);
    Url resolved(url);
    return status == noErr ? std::move(resolved) : Url();
}

/// Calls visit(item, URL of the item) for each item in \a items, in the order of the list, until \a visit returns true.
/// Skips items whose URL cannot be resolved.
template <class Visit>
void VisitItems(LoginItems const& items, Visit const& visit)
{
    UInt32 seed = 0;
    CoreFoundationOwner<CFArrayRef> const snapshot(LSSharedFileListCopySnapshot(items.Get(), &seed));
    CFIndex const count = snapshot ? CFArrayGetCount(snapshot.Get()) : 0;
    for (CFIndex i = 0; i < count; ++i) {
        auto const item =
            static_cast<LSSharedFileListItemRef>(const_cast<void*>(CFArrayGetValueAtIndex(snapshot.Get(), i)));
        Url const url = Resolve(item);
        if (url && visit(item, url)) {
            return;
        }
    }
}

/// Returns the application identifier for the login item at \a url. Returns a null string if the vendor of the login
/// item is not \a maker, or if the bundle of the login item or of the main application cannot be read.
QString IdentifierOf(Url const& url, QString const& maker)
{
    Bundle const item = CreateBundle(url);
    if (!item || GetBundleInfo(item, Maker) != maker) {
        return {};
    }
    Bundle const application = CreateBundle(CreateFolderUrl(MainBundlePathOf(GetQStringFromCFURL(url.Get()))));
    if (!application) {
        return {};
    }
    QString const version = GetBundleInfo(application, BundleVersion);
    QString const product = ProductWithoutMajorVersion(GetBundleInfo(application, Product), version);
    return QStringList{maker, product, version, GetBundleInfo(item, Product)}.join(QLatin1Char('_'));
}

/// Searches the main bundle for the helper application whose bundle identifier has \a product as its third part.
/// Returns the helper's path, which ends with "/", or an empty string if the main bundle does not contain this helper.
QString HelperPath(QString const& product)
{
    CFBundleRef const bundle = CFBundleGetMainBundle(); // must not be released: the caller does not own it
    Url const mainBundle(bundle ? CFBundleCopyBundleURL(bundle) : nullptr);
    if (!mainBundle) {
        return {};
    }
    QString const folder = GetQStringFromCFURL(mainBundle.Get()) + QLatin1String("Contents/Library/LoginItems/");
    auto const names = QDir(folder).entryList({QStringLiteral("*.app")}, QDir::AllEntries, QDir::Unsorted);
    for (QString const& name : names) {
        QString const path = folder + name;
        if (GetBundleInfo(CreateBundle(CreateFolderUrl(path)), Product) == product) {
            return path + QLatin1Char('/');
        }
    }
    return {};
}

} // namespace

class LoginItemStartupImpl::Impl
{
public:
    QMap<QString, QString> paths; // key: the identifier of a login item; value: the path of the item's bundle
};

LoginItemStartupImpl::LoginItemStartupImpl()
    : impl_(std::make_unique<Impl>())
{}

LoginItemStartupImpl::~LoginItemStartupImpl() = default;

void LoginItemStartupImpl::UpdateStartupItems(QString const& maker)
{
    impl_->paths.clear();
    LoginItems const items = CreateLoginItems();
    if (!items) {
        return;
    }
    VisitItems(items, [this, &maker](LSSharedFileListItemRef, Url const& url) {
        QString const identifier = IdentifierOf(url, maker);
        if (!identifier.isNull()) {
            impl_->paths.insert(identifier, GetQStringFromCFURL(url.Get()));
        }
        return false;
    });
}

bool LoginItemStartupImpl::IsInStartup(QString const& identifier) const
{
    return impl_->paths.contains(identifier);
}

QStringList LoginItemStartupImpl::GetItemsAtStartup() const
{
    return impl_->paths.keys();
}

bool LoginItemStartupImpl::AddToLoginItems(QString const& identifier) const
{
    if (impl_->paths.contains(identifier)) {
        return true;
    }
    QString const helper = HelperPath(HelperProductOf(identifier));
    if (helper.isEmpty()) {
        return false;
    }
    LoginItems const items = CreateLoginItems();
    if (!items) {
        return false;
    }
    Url const url = CreateFolderUrl(helper);
    if (!url) {
        return false;
    }
    CoreFoundationOwner<LSSharedFileListItemRef> const inserted(LSSharedFileListInsertItemURL(
        items.Get(), kLSSharedFileListItemLast, nullptr, nullptr, url.Get(), nullptr, nullptr));
    return static_cast<bool>(inserted);
}

bool LoginItemStartupImpl::RemoveFromLoginItems(QString const& identifier) const
{
    QString const path = impl_->paths.value(identifier);
    if (path.isEmpty()) {
        return false;
    }
    LoginItems const items = CreateLoginItems();
    if (!items) {
        return false;
    }
    bool removed = false;
    VisitItems(items, [&](LSSharedFileListItemRef item, Url const& url) {
        if (GetQStringFromCFURL(url.Get()) != path) {
            return false;
        }
        removed = LSSharedFileListItemRemove(items.Get(), item) == noErr;
        return true;
    });
    return removed;
}

} // namespace Zelkor::Util
