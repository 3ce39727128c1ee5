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

/// Returns \a widget if it has the attribute `Qt::WA_NativeWindow`. Otherwise, returns its first descendant that has
/// this attribute, for example the container of a `QQuickView`. Returns null if neither \a widget nor a descendant has
/// the attribute, or if \a widget is null. Call this function on the GUI thread.
ZQTUTIL_EXPORT QWidget* findQmlContainer(QWidget* widget);

/// Gives the keyboard focus to \a widget whenever \a window is activated. Without this workaround, Qt gives the
/// focus to the top-level window only, and a native window that is embedded in \a widget loses the focus.
///
/// Also sets the focus policy `Qt::StrongFocus` for the native widget, which is the result of findQmlContainer() for
/// \a widget. Each call installs another event filter, so call this function only once for each window, on
/// the GUI thread.
///
/// \param window  the top-level window to watch. If \a window is null or is not a window, the function does nothing.
/// \param widget  the widget that contains the native window. If findQmlContainer() returns null for \a widget, the
///                function does nothing.
ZQTUTIL_EXPORT void ApplyQmlWindowFocusWorkaround(QWidget* window, QWidget* widget);

/// The event filter that ApplyQmlWindowFocusWorkaround() installs on the top-level window.
class ZQTUTIL_EXPORT QmlWindowFocusWorkaround : public QObject
{
public:
    /// Creates the event filter and installs it on \a window.
    ///
    /// \param window  the window to watch; it owns this event filter; must not be null
    /// \param target  the widget to which the filter gives the focus; can be destroyed at any time
    QmlWindowFocusWorkaround(QWidget* window, QWidget* target);

    ~QmlWindowFocusWorkaround() override;

    /// Handles `QEvent::ActivationChange`. If the window is now active and visible, activates and raises the target
    /// widget and gives the focus to it. Does nothing for other events.
    ///
    /// \returns the result of QObject::eventFilter() for \a watched and \a event. The result is false, so the window
    ///          also receives the event.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* window_;
    QPointer<QWidget> target_;
};

} // namespace Util
} // namespace Zelkor
