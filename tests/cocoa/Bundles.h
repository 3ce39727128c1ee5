#pragma once

#include <TestBed.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

namespace Zelkor::Testing
{

/// Application bundles in a folder of their own: real folders with real property lists.
class Bundles
{
public:
    /// Makes the bundle \a name, a path below the folder, and returns its path. Without \a identifier it has no
    /// property list.
    QString Make(QString const& name, QString const& identifier, QString const& version)
    {
        return MakeWith(name, identifier, QStringLiteral("<string>%1</string>").arg(version));
    }

    /// The same, with the version as it stands in the property list: "<integer>3</integer>".
    QString MakeWith(QString const& name, QString const& identifier, QString const& versionElement)
    {
        QString path = folder_.filePath(name);
        QDir().mkpath(path + QStringLiteral("/Contents"));
        if (!identifier.isEmpty()) {
            QFile list(path + QStringLiteral("/Contents/Info.plist"));
            list.open(QIODevice::WriteOnly);
            list.write(QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\"><dict>"
                                      "<key>CFBundleIdentifier</key><string>%1</string>"
                                      "<key>CFBundleVersion</key>%2</dict></plist>")
                           .arg(identifier, versionElement)
                           .toUtf8());
        }
        return path;
    }

    /// Makes an application of the maker's, which the main bundle then is, with a helper in it, and returns the
    /// helper's path.
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
