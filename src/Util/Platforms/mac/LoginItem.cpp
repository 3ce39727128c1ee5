#include <Util/Platforms/mac/LoginItem.h>

#include <QtCore/QStringList>

namespace Zelkor::Util
{

namespace
{

constexpr int LeastBundleIdentifierParts = 3;
constexpr int VersionDots = 2;
// MainBundlePathOf() splits a login item's path at the slashes and removes the last five parts: "Contents", "Library",
// "LoginItems", the name of the login item's bundle, and the empty string after the last slash.
constexpr int PartsInsideMainBundle = 5;
// An application identifier has four parts, separated by underscores: vendor, product, version and flavour. This
// constant is the index of the flavour.
constexpr int HelperPart = 3;

} // namespace

QString BundleIdentifierPart(QString const& bundleIdentifier, int index)
{
    QStringList const parts = bundleIdentifier.split(QLatin1Char('.'));
    return parts.size() < LeastBundleIdentifierParts ? QString() : parts.value(index);
}

QString CompletedBundleVersion(QString const& version)
{
    // Required behaviour: ".0" is appended only once, so "5" becomes "5.0", not "5.0.0".
    return version.count(QLatin1Char('.')) < VersionDots ? version + QLatin1String(".0") : version;
}

QString ProductWithoutMajorVersion(QString const& product, QString const& version)
{
    QString const majorVersion = version.section(QLatin1Char('.'), 0, 0);
    // Required behaviour: all occurrences of the major version are removed, not only the last one. Existing identifiers
    // were built in this way.
    return product.endsWith(majorVersion) ? QString(product).remove(majorVersion) : product;
}

QString MainBundlePathOf(QString const& itemPath)
{
    QStringList const parts = itemPath.split(QLatin1Char('/'));
    QString path;
    for (int i = 0; i < parts.size() - PartsInsideMainBundle; ++i) {
        path += parts[i] + QLatin1Char('/');
    }
    return path;
}

QString PathOfUrlText(QString const& url, bool namesLocalhost)
{
    return QString(url).remove(namesLocalhost ? QLatin1String("file://localhost") : QLatin1String("file://"));
}

QString HelperProductOf(QString const& identifier)
{
    return identifier.split(QLatin1Char('_')).value(HelperPart);
}

} // namespace Zelkor::Util
