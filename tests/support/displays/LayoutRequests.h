#pragma once

#include <QtCore/QtGlobal>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace Zelkor::Testing
{

/// Returns true if adding a child object to \a container requests a new layout, even if the layout of \a container does
/// not contain that child. Plain Qt widgets return false. Containers with a LayoutController return true.
bool RequestsLayoutForNewChild(QWidget& container);

} // namespace Zelkor::Testing
