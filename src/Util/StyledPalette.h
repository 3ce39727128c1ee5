#pragma once

/// \file
/// Access to the application palette from style sheets.

#include <Util/Export.h>

#include <QtGui/QColor>
#include <QtWidgets/QWidget>

namespace Zelkor
{
namespace Util
{

/// A widget whose properties set colours of the application palette. Style sheets cannot set these colours directly,
/// but they can set the properties. Add one hidden instance to the main window, and set its properties in the style
/// sheet:
///
/// \code{.qss}
/// Zelkor--Util--StyledPalette { qproperty-linksColor: #2a6fdb; qproperty-paletteLight: white; }
/// \endcode
///
/// The colours are stored in the application palette only. Therefore, all instances have the same colours. The
/// destruction of an instance does not reset the colours. Use this class on the GUI thread.
class ZQTUTIL_EXPORT StyledPalette : public QWidget
{
    Q_OBJECT
    /// The colour of links in the application palette.
    Q_PROPERTY(QColor linksColor READ GetLinksColor WRITE SetLinksColor)
    /// The colour of role `QPalette::Light` in the application palette. The setter converts the colour to RGB.
    Q_PROPERTY(QColor paletteLight READ GetPalleteLight WRITE SetPaletteLight)

public:
    /// Creates an empty widget. \a parent owns the widget and can be null.
    explicit StyledPalette(QWidget* parent = nullptr);

public Q_SLOTS:
    /// Returns the colour of links in the application palette.
    QColor GetLinksColor();
    /// Sets the colour of links to \a color in all colour groups of the application palette.
    void SetLinksColor(QColor color);
    /// Returns the colour of role `QPalette::Light` in the application palette.
    ///
    /// The function name is misspelt, but is kept because callers depend on it.
    QColor GetPalleteLight();
    /// Converts \a color to RGB and sets it for role `QPalette::Light` in all colour groups of the application palette.
    void SetPaletteLight(QColor color);
};

} // namespace Util
} // namespace Zelkor
