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
    // Required: there is no dot between product and version, and the version keeps its case. Installed agents have
    // these names.
    QString const majorVersion = parts[2].section(QLatin1Char('.'), 0, 0);
    return QLatin1String("com.") + parts[0].toLower() + QLatin1Char('.') + parts[1].toLower() + majorVersion +
           QLatin1Char('.') + parts[3].toLower() + QLatin1String(".startup.plist");
}

QRegularExpression LoadedJobPattern(QString const& label)
{
    // Required: the label is not escaped, so its dots match any character, and longer labels with this end match too.
    return QRegularExpression(label + QLatin1String("(\n|$)"));
}

QString BundlePathOf(QString const& executablePath)
{
    static QRegularExpression const insideBundle(QStringLiteral("/Contents.*"));
    QString path = executablePath;
    // Required: without a match the position is -1, which Qt counts from the end, so the last character is removed.
    return path.remove(path.lastIndexOf(insideBundle), path.size() + 1);
}

} // namespace Zelkor::Util
