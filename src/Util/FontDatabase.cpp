// QFontDatabase::supportsThreadedFontRendering() has been deprecated since Qt 5.2 and has no replacement. The build
// hides deprecated functions, so this source file makes them visible again.
#undef QT_DISABLE_DEPRECATED_BEFORE
#define QT_DISABLE_DEPRECATED_BEFORE 0x050100

#include <Util/FontDatabase.h>

#include <QtGui/QFontDatabase>

#include <algorithm>
#include <iterator>

namespace Zelkor::Util
{

std::set<int> FontDatabase::s_addedFonts;

int FontDatabase::addApplicationFont(QString const& fileName)
{
    int const id = QFontDatabase::addApplicationFont(fileName);
    // If the font cannot be loaded, id is -1. Inserting -1 is harmless: QFontDatabase returns no families for -1.
    s_addedFonts.insert(id);
    return id;
}

bool FontDatabase::removeApplicationFont(int id)
{
    bool const removed = QFontDatabase::removeApplicationFont(id);
    if (removed) {
        s_addedFonts.erase(id);
    }
    return removed;
}

QStringList FontDatabase::applicationFontFamilies(int id)
{
    return QFontDatabase::applicationFontFamilies(id);
}

QStringList FontDatabase::addedFontFamilies()
{
    QStringList families;
    for (int const id : s_addedFonts) {
        families += QFontDatabase::applicationFontFamilies(id);
    }
    families.removeDuplicates();
    families.sort(Qt::CaseSensitive);
    return families;
}

QStringList FontDatabase::systemFontFamilies()
{
    QStringList families = QFontDatabase().families();
    auto const added = addedFontFamilies();
    for (QString const& family : added) {
        families.removeAll(family);
    }
    return families;
}

QStringList FontDatabase::scalableFontFamilies()
{
    QFontDatabase const database;
    QStringList const families = database.families();
    QStringList scalable;
    std::copy_if(families.begin(), families.end(), std::back_inserter(scalable),
                 [&database](QString const& family) { return database.isScalable(family); });
    return scalable;
}

bool FontDatabase::supportsThreadedFontRendering()
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    return QFontDatabase::supportsThreadedFontRendering();
    QT_WARNING_POP
}

} // namespace Zelkor::Util
