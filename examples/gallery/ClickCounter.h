#pragma once

/// \file
/// An observer of a SimpleModel.

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

/// Counts the clicks on each item of a model, as long as its box is checked.
class ClickCounter : public QGroupBox, private Util::ISimpleModelObserver
{
    Q_OBJECT

public:
    /// \a model is borrowed.
    ClickCounter(QString const& title, Util::SimpleModel* model, QWidget* parent = nullptr);
    ~ClickCounter() override;

private:
    void OnItemClicked(QString const& uid) override;
    void Observe(bool isOn);

    QPointer<Util::SimpleModel> model_;
    QTableWidget* table_;
};

} // namespace Gallery
} // namespace Zelkor
