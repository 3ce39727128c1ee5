#pragma once

// What installLayoutController() puts on a container.

#include <QtCore/QObject>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace Zelkor::Widget
{

/// Lays its parent out again when something changes that the layout would not notice by itself.
class LayoutController : public QObject
{
    Q_OBJECT

public:
    explicit LayoutController(QWidget* container);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Invalidate();

    QWidget* container_;
};

} // namespace Zelkor::Widget
