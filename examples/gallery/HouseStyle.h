#pragma once

/// \file
/// The house style: a style sheet for light and dark desktops.

#include <QtCore/QtGlobal>

QT_BEGIN_NAMESPACE
class QPalette;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Gallery
{

/// Gives the application \a palette and the style sheet in the colours that go with it.
void UsePalette(QPalette const& palette);

} // namespace Gallery
} // namespace Zelkor
