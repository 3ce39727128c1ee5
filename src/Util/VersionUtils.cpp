#include <Util/VersionUtils.h>

#include <Util/StringUtils.h>

namespace Zelkor::Util
{

Core::Version VersionFromString(QString const& text, QString const& separator)
{
    return Core::Util::VersionFromString(QStringToUtf8(text), QStringToUtf8(separator));
}

QString VersionToString(Core::Version const& version, Core::Util::VersionToStringDetail detail,
                        QString const& separator)
{
    return Utf8ToQString(Core::Util::VersionToString(version, detail, QStringToUtf8(separator)));
}

QString GenerateApplicationVisibleVersion(Core::Version const& version)
{
    using Detail = Core::Util::VersionToStringDetail;
    bool const hasThird = version.GetThird() != 0 && version.GetThird() != Core::Version::NotGiven;
    // The call is qualified with Util::, because argument-dependent lookup for an unqualified call would also find
    // Core::Util::VersionToString().
    return Util::VersionToString(version, hasThird ? Detail::MajorMinorThird : Detail::MajorMinor, QStringLiteral("."));
}

} // namespace Zelkor::Util
