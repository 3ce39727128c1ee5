#pragma once

/// \file
/// Keyboard focus for embedded native windows, such as QML views.

#include <Util/Export.h>

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

namespace Zelkor
{
namespace Util
{

/// Returns \a widget, or its first descendant, that has the attribute `Qt::WA_NativeWindow`, for example the container
/// of a `QQuickView`. Returns null if there is none, or if \a widget is null. GUI thread.
ZQTUTIL_EXPORT QWidget* findQmlContainer(QWidget* widget);

/// Gives the keyboard focus to \a widget whenever \a window is activated. Without this, Qt gives the focus to the
/// top-level window only, and a native window that is embedded in \a widget loses it.
///
/// Also sets the focus policy of the embedded native window to `Qt::StrongFocus`. Each call installs another event
/// filter, so call it once for each window. GUI thread.
///
/// \param window  the top-level window to watch. Does nothing if it is null or not a window.
/// \param widget  the widget that contains the native window. Does nothing if findQmlContainer() returns null for it.
ZQTUTIL_EXPORT void ApplyQmlWindowFocusWorkaround(QWidget* window, QWidget* widget);

/// The event filter that ApplyQmlWindowFocusWorkaround() installs on a window.
class ZQTUTIL_EXPORT QmlWindowFocusWorkaround : public QObject
{
public:
    /// Installs itself as an event filter on \a window.
    ///
    /// \param window  the window to watch, and the owner of this object; must not be null
    /// \param target  the widget that gets the focus; can be destroyed at any time
    QmlWindowFocusWorkaround(QWidget* window, QWidget* target);

    ~QmlWindowFocusWorkaround() override;

    /// Activates, raises and focuses the target if \a event is an activation change and the window is now active and
    /// visible. Returns the result of the base class for \a watched and \a event, so that the window receives the event
    /// too.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* window_;
    QPointer<QWidget> target_;
};

} // namespace Util
} // namespace Zelkor
