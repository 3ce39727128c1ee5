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

/// Sets \a palette and the gallery's style sheet on the application. The style sheet has dark colours if \a palette is
/// dark, and light colours otherwise.
void UsePalette(QPalette const& palette);

} // namespace Gallery
} // namespace Zelkor
