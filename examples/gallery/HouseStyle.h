#pragma once

/// \file
/// The style sheet of the gallery, for light and dark desktops.

#include <QtCore/QtGlobal>

QT_BEGIN_NAMESPACE
class QPalette;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Gallery
{

/// Sets \a palette on the application, and the style sheet in its light or dark colours.
void UsePalette(QPalette const& palette);

} // namespace Gallery
} // namespace Zelkor
