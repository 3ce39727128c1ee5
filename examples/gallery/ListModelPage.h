#pragma once

/// \file
/// The page List model: one model in a view of Qt Widgets and in one of QML.

#include "Page.h"

QT_BEGIN_NAMESPACE
class QListView;
class QQuickWidget;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Util
{
class SimpleModel;
}
namespace Gallery
{

class ListModelPage : public Page
{
    Q_OBJECT

public:
    explicit ListModelPage(QWidget* parent = nullptr);

    void ShowSample() override;

protected:
    void changeEvent(QEvent* event) override;

private:
    QWidget* NewWidgetView();
    QWidget* NewQmlView();
    void ColourQmlView();

    Util::SimpleModel* model_;
    QListView* view_;
    QQuickWidget* qmlView_;
};

} // namespace Gallery
} // namespace Zelkor
