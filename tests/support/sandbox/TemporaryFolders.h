#pragma once

// Folders and what is in them, by their paths as Qt writes them. Whatever the library answers, nothing is touched that
// is not in the temporary folder.

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <sys/types.h>

namespace Zelkor::Testing
{

/// Throws a std::runtime_error about \a what unless \a done.
void Check(bool done, QString const& what);

/// Makes the folders above too, where they are missing.
void MakeFolder(QString const& path);

/// Makes a file that has some content, or writes one anew.
void MakeFile(QString const& path);

void MakeLink(QString const& path, QString const& target);
void MakeHardLink(QString const& path, QString const& target);
void MakePipe(QString const& path);
void Chmod(QString const& path, mode_t mode);
void GiveTo(uid_t user, QString const& path);

/// Whether there is anything, be it a link that leads nowhere.
bool Exists(QString const& path);

/// Everything below \a folder, hidden things too; behind each link where it leads.
QStringList Listing(QString const& folder);

} // namespace Zelkor::Testing
