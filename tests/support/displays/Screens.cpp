#include <support/displays/Screens.h>

#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <QtTest/QtTest>

namespace Zelkor::Testing
{

QVector<QRect> ScreenGeometries()
{
    QVector<QRect> geometries;
    auto const screens = QGuiApplication::screens();
    for (QScreen const* const screen : screens) {
        geometries += screen->geometry();
    }
    return geometries;
}

void AddScreenRows()
{
    QTest::addColumn<QRect>("screen");
    QVector<QRect> const screens = ScreenGeometries();
    for (int i = 0; i < screens.size(); ++i) {
        QTest::addRow("screen %d", i) << screens.at(i);
    }
}

} // namespace Zelkor::Testing
