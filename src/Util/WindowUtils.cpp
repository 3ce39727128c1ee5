#include <Util/WindowUtils.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QPointer>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <QtWidgets/QDialog>
#include <QtWidgets/QWidget>

#include <cmath>

namespace Zelkor::Util
{

namespace
{

/// Returns the mean of two coordinates. Half pixels are rounded away from zero. qRound() is not suitable, because it
/// rounds negative half pixels toward zero.
int RoundedMiddle(int first, int last)
{
    return static_cast<int>(std::lround((static_cast<double>(first) + last) * 0.5));
}

/// Returns the centre of \a rect, rounded toward zero. RoundedMiddle() cannot be used here, because it rounds half
/// pixels away from zero. Rounding toward zero is required behaviour for window positions.
QPoint MiddleOf(QRect const& rect)
{
    return {(rect.left() + rect.right()) / 2, (rect.top() + rect.bottom()) / 2};
}

QPoint MiddleFor(QDialog const* dialog, QWidget const* parent)
{
    if (!parent) {
        parent = dialog->parentWidget();
    }
    // The frame of the parent window is deliberately ignored: geometry() excludes it.
    return MiddleOf(parent ? parent->window()->geometry() : GetCurrentScreenRect(dialog));
}

} // namespace

QRect GetCurrentScreenRect(QWidget const* widget)
{
    QScreen const* const primaryScreen = QGuiApplication::primaryScreen();
    QRect const primary = primaryScreen ? primaryScreen->geometry() : QRect();
    if (!widget) {
        return primary;
    }
    QRect frame = widget->frameGeometry();
    if (!widget->isWindow()) {
        frame.moveTopLeft(widget->mapToGlobal(QPoint(0, 0)));
    }
    QPoint const centre(RoundedMiddle(frame.left(), frame.right()), RoundedMiddle(frame.top(), frame.bottom()));
    auto const screens = QGuiApplication::screens();
    for (QScreen const* const screen : screens) {
        if (screen->geometry().contains(centre)) {
            return screen->geometry();
        }
    }
    return primary;
}

QPoint GetWidgetPosOnCurrentScreenCenter(QWidget const& widget)
{
    QRect const frame = widget.frameGeometry();
    return MiddleOf(GetCurrentScreenRect(widget.parentWidget())) - QPoint(frame.width() / 2, frame.height() / 2);
}

int ExecDialogInCenterWindow(QDialog* dialog, QWidget* parent)
{
    if (!dialog) {
        return 0;
    }
    QPointer<QDialog> const guarded(dialog);
    QPoint const middle = MiddleFor(dialog, parent);
    dialog->show();
    QCoreApplication::processEvents(); // the dialog has its final size only after it has been shown
    if (!guarded) {
        return 0;
    }
    QSize const size = dialog->geometry().size();
    dialog->move(middle - QPoint(qRound(size.width() * 0.5), qRound(size.height() * 0.5)));
    return dialog->exec();
}

} // namespace Zelkor::Util
