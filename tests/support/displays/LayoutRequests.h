#pragma once

#include <QtCore/QtGlobal>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace Zelkor::Testing
{

/// Whether \a container is laid out again when it gets a child that its layout does not know.
bool FollowsItsChildren(QWidget& container);

} // namespace Zelkor::Testing
