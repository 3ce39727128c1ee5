#pragma once

/// \file
/// A group box that counts the clicks on the items of a SimpleModel.

#include <Util/Model/SimpleModel/SimpleModel.h>

#include <QtCore/QPointer>
#include <QtWidgets/QGroupBox>

QT_BEGIN_NAMESPACE
class QCheckBox;
class QTableWidget;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Gallery
{

/// A checkable group box that counts the clicks on each item of a model. Clicks are counted only while the group box is
/// checked.
class ClickCounter : public QGroupBox, private Util::ISimpleModelObserver
{
    Q_OBJECT

public:
    /// Creates a group box with the title \a title for the current items of \a model. The group box is initially
    /// checked. Does not take ownership of \a model. The model may be destroyed before the group box.
    ClickCounter(QString const& title, Util::SimpleModel* model, QWidget* parent = nullptr);
    ~ClickCounter() override;

private:
    void OnItemClicked(QString const& uid) override;
    void SetObserving(bool isOn);

    QPointer<Util::SimpleModel> model_;
    QTableWidget* table_;
};

} // namespace Gallery
} // namespace Zelkor
