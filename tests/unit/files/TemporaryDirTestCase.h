#pragma once

#include <support/sandbox/FolderTestCase.h>
#include <unit/files/TemporaryDirPlay.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Zelkor::Testing
{

/// Tests of temporary directories in a temporary folder of the test's own, beside which there is a folder "outside"
/// with canaries.
class TemporaryDirTestCase : public FolderTestCase
{
    Q_OBJECT

protected:
    void SetUp() override;

    using FolderTestCase::At;
    QString At(QString const& path) const { return PathAt(path.toUtf8()); }

    /// The test's folder, with all that is in it.
    QString Sandbox() const;

    /// The name of this program.
    static QString Name();

    /// What another process of the application tells of the one directory that it makes after these \a steps.
    Made MakeOne(QStringList const& steps = {}) const;

    QString tmp_;             // the temporary folder,
    QString own_;             // the application's in it,
    QStringList application_; // whose name and version these steps set
};

/// The folder with the canaries beside the temporary folder that \a path is in.
QString Outside(QString const& path);

/// Makes a folder with folders, files, hidden ones and links in it.
void MakeTree(QString const& path);

} // namespace Zelkor::Testing
