#pragma once

/// \file
/// The List model page: shows one model in a Qt Widgets view and in a QML view.

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
    void UpdateQmlColours();

    Util::SimpleModel* model_;
    QListView* view_;
    QQuickWidget* qmlView_;
};

} // namespace Gallery
} // namespace Zelkor
