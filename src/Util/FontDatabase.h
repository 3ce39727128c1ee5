#pragma once

/// \file
/// The fonts of the application and the fonts of the system.

#include <Util/Export.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <set>

namespace Zelkor
{
namespace Util
{

/// Static wrappers for functions of QFontDatabase. The class also records which fonts the process has added with
/// addApplicationFont(). Use this class on the GUI thread.
class ZQTUTIL_EXPORT FontDatabase
{
public:
    FontDatabase() = delete;

    /// Loads the font file \a fileName. Returns the identifier of the font, or -1 if the file cannot be loaded.
    static int addApplicationFont(QString const& fileName);

    /// Unloads the font with the identifier \a id. Returns false if this fails.
    static bool removeApplicationFont(int id);

    /// Returns the families of the font with the identifier \a id. Returns an empty list if there is no such font.
    static QStringList applicationFontFamilies(int id);

    /// Returns the families of all fonts that were added with addApplicationFont() and have not been removed. The list
    /// is sorted case-sensitively and has no duplicates.
    static QStringList addedFontFamilies();

    /// Returns all font families that are not in addedFontFamilies(), in the order of `QFontDatabase::families()`.
    static QStringList systemFontFamilies();

    /// Returns all scalable font families, including the families of added fonts, in the order of
    /// `QFontDatabase::families()`.
    static QStringList scalableFontFamilies();

    /// Returns true if text can be drawn outside the GUI thread.
    static bool supportsThreadedFontRendering();

private:
    static std::set<int> s_addedFonts;
};

} // namespace Util
} // namespace Zelkor
