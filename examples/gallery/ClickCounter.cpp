#include "ClickCounter.h"

#include "Widgets.h"

#include <QtWidgets/QTableWidget>
#include <QtWidgets/QVBoxLayout>

namespace Zelkor::Gallery
{

using Util::SimpleModel;

ClickCounter::ClickCounter(QString const& title, Util::SimpleModel* model, QWidget* parent)
    : QGroupBox(title, parent)
    , model_(model)
    , table_(new QTableWidget)
{
    SetUpTable(table_, {tr("Item"), tr("Clicks")});
    table_->setAccessibleName(title);
    table_->setRowCount(model_->rowCount());
    for (int row = 0; row < model_->rowCount(); ++row) {
        table_->setItem(row, 0, NewCell(model_->index(row).data(SimpleModel::Uid).toString()));
        table_->setItem(row, 1, NewCell(locale().toString(0)));
    }
    auto* const column = new QVBoxLayout(this);
    column->addWidget(table_);

    setCheckable(true);
    connect(this, &QGroupBox::toggled, this, &ClickCounter::SetObserving);
    SetObserving(true);
}

ClickCounter::~ClickCounter()
{
    if (model_) {
        SetObserving(false);
    }
}

void ClickCounter::SetObserving(bool isOn)
{
    model_->setData(QModelIndex(), QVariant::fromValue<Util::ISimpleModelObserver*>(this),
                    isOn ? SimpleModel::RegisterObserver : SimpleModel::UnregisterObserver);
}

void ClickCounter::OnItemClicked(QString const& uid)
{
    for (QTableWidgetItem const* const item : table_->findItems(uid, Qt::MatchExactly)) {
        QTableWidgetItem* const clicks = table_->item(item->row(), 1);
        clicks->setText(locale().toString(locale().toInt(clicks->text()) + 1));
    }
}

} // namespace Zelkor::Gallery
