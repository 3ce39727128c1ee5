#pragma once

// The event filter that installLayoutController() installs on a container. Private to the library.

#include <QtCore/QObject>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace Zelkor::Widget
{

/// Invalidates the layout of its parent when a child is added or removed, and when the font, style or layout direction
/// of the parent changes. Qt does not do this in all of these cases.
class LayoutController : public QObject
{
    Q_OBJECT

public:
    /// Creates a controller for the layout of \a container, which becomes its parent.
    explicit LayoutController(QWidget* container);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Invalidate();

    QWidget* container_;
};

} // namespace Zelkor::Widget
