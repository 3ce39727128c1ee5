#pragma once

/// \file
/// The application's palette, for style sheets.

#include <Util/Export.h>

#include <QtGui/QColor>
#include <QtWidgets/QWidget>

namespace Zelkor
{
namespace Util
{

/// Lets a style sheet set colours of the application's palette that it cannot reach otherwise. Keep one such widget in
/// the main window, hidden:
///
/// \code{.qss}
/// Zelkor--Util--StyledPalette { qproperty-linksColor: #2a6fdb; qproperty-paletteLight: white; }
/// \endcode
///
/// The colours are the application's: they last longer than the widget, and every one of these shows the same. GUI
/// thread.
class ZQTUTIL_EXPORT StyledPalette : public QWidget
{
    Q_OBJECT
    /// The colour of links.
    Q_PROPERTY(QColor linksColor READ GetLinksColor WRITE SetLinksColor)
    /// The light colour of bevels; kept as RGB whatever model it is given in.
    Q_PROPERTY(QColor paletteLight READ GetPalleteLight WRITE SetPaletteLight)

public:
    /// A widget without content, owned by \a parent, if any.
    explicit StyledPalette(QWidget* parent = nullptr);

public Q_SLOTS:
    /// The colour of links in the application's palette.
    QColor GetLinksColor();
    /// Makes \a color that of links in all groups of the application's palette.
    void SetLinksColor(QColor color);
    /// The light colour of the application's palette.
    QColor GetPalleteLight();
    /// Makes \a color, as RGB, the light one in all groups of the application's palette.
    void SetPaletteLight(QColor color);
};

} // namespace Util
} // namespace Zelkor
