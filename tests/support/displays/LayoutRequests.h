#pragma once

#include <QtCore/QtGlobal>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace Zelkor::Testing
{

/// Returns true if adding a child object to \a container requests a new layout, although the layout of \a container
/// does not manage that child. Plain Qt widgets return false; containers with a layout controller return true.
bool RequestsLayoutForNewChild(QWidget& container);

} // namespace Zelkor::Testing
