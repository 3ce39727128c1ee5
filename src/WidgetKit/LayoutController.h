#pragma once

// The event filter that installLayoutController() installs on a container. Private to the library.

#include <QtCore/QObject>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace Zelkor::Widget
{

/// Invalidates the layout of a container widget when a child of the container is added or removed, and when the font,
/// style or layout direction of the container changes. Qt itself invalidates the layout in only some of these cases.
class LayoutController : public QObject
{
    Q_OBJECT

public:
    /// Creates a controller for the layout of \a container. \a container becomes the parent of the controller.
    explicit LayoutController(QWidget* container);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Invalidate();

    QWidget* container_;
};

} // namespace Zelkor::Widget
