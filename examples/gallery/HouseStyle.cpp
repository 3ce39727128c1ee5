#include "HouseStyle.h"

#include "Palettes.h"

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtGui/QPalette>
#include <QtWidgets/QApplication>

#include <map>

namespace Zelkor::Gallery
{
namespace
{

using Colours = std::map<QString, QString>;

Colours const& Light()
{
    static Colours const colours = {
        {QStringLiteral("accent"), QStringLiteral("#2f6fc4")},
        {QStringLiteral("accentHover"), QStringLiteral("#245aa3")},
        {QStringLiteral("accentText"), QStringLiteral("#ffffff")},
        {QStringLiteral("bad"), QStringLiteral("#c0332b")},
        {QStringLiteral("base"), QStringLiteral("#ffffff")},
        {QStringLiteral("border"), QStringLiteral("#bcc0c5")},
        {QStringLiteral("caution"), QStringLiteral("#b97a00")},
        {QStringLiteral("dimmed"), QStringLiteral("#6c7075")},
        {QStringLiteral("light"), QStringLiteral("#ffffff")},
        {QStringLiteral("question"), QStringLiteral("#7a5cc7")},
        {QStringLiteral("text"), QStringLiteral("#1d1f21")},
        {QStringLiteral("window"), QStringLiteral("#f3f4f5")},
    };
    return colours;
}

Colours const& Dark()
{
    static Colours const colours = {
        {QStringLiteral("accent"), QStringLiteral("#3d7fd6")},
        {QStringLiteral("accentHover"), QStringLiteral("#5c97e4")},
        {QStringLiteral("accentText"), QStringLiteral("#ffffff")},
        {QStringLiteral("bad"), QStringLiteral("#f0766d")},
        {QStringLiteral("base"), QStringLiteral("#1f2123")},
        {QStringLiteral("border"), QStringLiteral("#55595f")},
        {QStringLiteral("caution"), QStringLiteral("#e5ad4a")},
        {QStringLiteral("dimmed"), QStringLiteral("#9a9ea4")},
        {QStringLiteral("light"), QStringLiteral("#4a4e53")},
        {QStringLiteral("question"), QStringLiteral("#a78bf0")},
        {QStringLiteral("text"), QStringLiteral("#e4e6e8")},
        {QStringLiteral("window"), QStringLiteral("#2b2d30")},
    };
    return colours;
}

QString HouseStyleSheet(QPalette const& palette)
{
    QFile file(QStringLiteral(":/style/house.qss"));
    file.open(QIODevice::ReadOnly);
    QString const text = QString::fromUtf8(file.readAll());
    Colours const& colours = IsDark(palette) ? Dark() : Light();

    QString sheet;
    int end = 0;
    static QRegularExpression const word(QStringLiteral("@(\\w+)"));
    for (auto found = word.globalMatch(text); found.hasNext();) {
        QRegularExpressionMatch const match = found.next();
        sheet += text.midRef(end, match.capturedStart() - end);
        sheet += colours.at(match.captured(1));
        end = match.capturedEnd();
    }
    return sheet + text.midRef(end);
}

} // namespace

void UsePalette(QPalette const& palette)
{
    QApplication::setPalette(palette);
    qApp->setStyleSheet(HouseStyleSheet(palette));
}

} // namespace Zelkor::Gallery
