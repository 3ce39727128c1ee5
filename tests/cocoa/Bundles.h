#pragma once

#include <TestBed.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

namespace Zelkor::Testing
{

/// Creates application bundles in a temporary folder. Each bundle is a real folder. The property list of a bundle is
/// the file Contents/Info.plist in its folder.
class Bundles
{
public:
    /// Creates a bundle and returns its absolute path. \a name is the path of the bundle relative to the temporary
    /// folder. If \a identifier is empty, the bundle has no property list.
    QString Make(QString const& name, QString const& identifier, QString const& version)
    {
        return MakeWithVersionElement(name, identifier, QStringLiteral("<string>%1</string>").arg(version));
    }

    /// Creates a bundle like Make(). \a versionElement is the XML element of the version, for example
    /// "<integer>3</integer>".
    QString MakeWithVersionElement(QString const& name, QString const& identifier, QString const& versionElement)
    {
        QString path = folder_.filePath(name);
        QDir().mkpath(path + QStringLiteral("/Contents"));
        if (!identifier.isEmpty()) {
            QFile propertyList(path + QStringLiteral("/Contents/Info.plist"));
            propertyList.open(QIODevice::WriteOnly);
            propertyList.write(QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\"><dict>"
                                              "<key>CFBundleIdentifier</key><string>%1</string>"
                                              "<key>CFBundleVersion</key>%2</dict></plist>")
                                   .arg(identifier, versionElement)
                                   .toUtf8());
        }
        return path;
    }

    /// Creates an application bundle that contains the bundle of a helper application. Makes the outer bundle the main
    /// bundle. Returns the path of the helper's bundle.
    QString MakeStudio()
    {
        TestBed::SetMainBundle(
            Make(QStringLiteral("Studio.app"), QStringLiteral("com.zelkor.Studio3"), QStringLiteral("3.1")));
        return Make(QStringLiteral("Studio.app/Contents/Library/LoginItems/Agent.app"),
                    QStringLiteral("com.zelkor.Agent"), QStringLiteral("1.0"));
    }

private:
    QTemporaryDir folder_;
};

} // namespace Zelkor::Testing
