#pragma once

/// \file
/// The fonts of the application apart from those of the system.

#include <Util/Export.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <set>

namespace Zelkor
{
namespace Util
{

/// `QFontDatabase`, which also remembers the fonts that this process has added through it. GUI thread.
class ZQTUTIL_EXPORT FontDatabase
{
public:
    FontDatabase() = delete;

    /// Loads the font in \a fileName and returns its identifier; -1 when it cannot be loaded.
    static int addApplicationFont(QString const& fileName);

    /// Unloads the font \a id; false when that fails.
    static bool removeApplicationFont(int id);

    /// The families in the font \a id; none when it is unknown.
    static QStringList applicationFontFamilies(int id);

    /// The families of the fonts that were added and not removed, each once, sorted.
    static QStringList addedFontFamilies();

    /// The families of the system: all that there are but addedFontFamilies(), in Qt's order.
    static QStringList systemFontFamilies();

    /// The families that can be scaled, those of added fonts too, in Qt's order.
    static QStringList scalableFontFamilies();

    /// Whether text can be drawn on other threads.
    static bool supportsThreadedFontRendering();

private:
    static std::set<int> s_addedFonts;
};

} // namespace Util
} // namespace Zelkor
