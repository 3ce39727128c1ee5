#pragma once

/// \file
/// Keyboard focus in an embedded native window.

#include <Util/Export.h>

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

namespace Zelkor
{
namespace Util
{

/// The first widget of \a widget and those below it that has a native window of its own, such as the container of a
/// `QQuickView`; null when there is none. GUI thread.
ZQTUTIL_EXPORT QWidget* findQmlContainer(QWidget* widget);

/// Keeps the keyboard focus in the native window embedded in \a widget whenever \a window is activated: such a window
/// loses it, since Qt gives it to the top-level window alone. Nothing when \a window is no window, or when
/// findQmlContainer() finds none; calling it twice does it twice. GUI thread.
ZQTUTIL_EXPORT void ApplyQmlWindowFocusWorkaround(QWidget* window, QWidget* widget);

/// What ApplyQmlWindowFocusWorkaround() puts on a window.
class ZQTUTIL_EXPORT QmlWindowFocusWorkaround : public QObject
{
public:
    /// Watches \a window, which owns this object and is not null, for \a target, which may end at any time.
    QmlWindowFocusWorkaround(QWidget* window, QWidget* target);

    ~QmlWindowFocusWorkaround() override;

    /// Hands activation and focus to the target when the window has been activated. Swallows nothing.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* window_;
    QPointer<QWidget> target_;
};

} // namespace Util
} // namespace Zelkor
