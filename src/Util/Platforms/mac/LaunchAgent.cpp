#include <Util/Platforms/mac/LaunchAgent.h>

#include <QtCore/QStringList>

namespace Zelkor::Util
{

namespace
{

constexpr int IdentifierParts = 4;

} // namespace

QString LaunchAgentFileName(QString const& identifier)
{
    QStringList const parts = identifier.split(QLatin1Char('_'));
    if (parts.size() != IdentifierParts) {
        return {};
    }
    // Do not put a dot between the product and the major version, and do not convert the major version to lower case.
    // Otherwise, the name would differ from the names of the launch agents that are already installed.
    QString const majorVersion = parts[2].section(QLatin1Char('.'), 0, 0);
    return QLatin1String("com.") + parts[0].toLower() + QLatin1Char('.') + parts[1].toLower() + majorVersion +
           QLatin1Char('.') + parts[3].toLower() + QLatin1String(".startup.plist");
}

QRegularExpression LoadedJobPattern(QString const& label)
{
    // Required behaviour: the label is not escaped, so each dot in the label matches any character. The beginning of
    // the label is not anchored, so the pattern also matches longer labels that end with this label.
    return QRegularExpression(label + QLatin1String("(\n|$)"));
}

QString BundlePathOf(QString const& executablePath)
{
    static QRegularExpression const insideBundle(QStringLiteral("/Contents.*"));
    QString path = executablePath;
    // Required behaviour: if the path does not contain "/Contents", lastIndexOf() returns -1. QString::remove() counts
    // a negative position from the end, so the last character of the path is removed.
    return path.remove(path.lastIndexOf(insideBundle), path.size() + 1);
}

} // namespace Zelkor::Util
