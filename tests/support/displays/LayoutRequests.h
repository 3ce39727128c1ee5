#pragma once

#include <QtCore/QtGlobal>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace Zelkor::Testing
{

/// Adds a child object to \a container, but not to the layout of \a container. Returns true if \a container then
/// receives an event of type QEvent::LayoutRequest. The result is false for plain Qt widgets, and true for containers
/// with a LayoutController.
bool RequestsLayoutForNewChild(QWidget& container);

} // namespace Zelkor::Testing
