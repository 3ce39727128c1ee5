#include "Timeline.h"

#include "ToneDelegate.h"
#include "Widgets.h"

namespace Zelkor::Gallery
{

Timeline::Timeline(QWidget* parent)
    : QTableWidget(parent)
{
    SetUpTable(this, {tr("Iteration"), tr("Object"), tr("Event")});
    setItemDelegate(new ToneDelegate(this));
    setAccessibleName(tr("Timeline"));
}

void Timeline::Add(QString const& object, QString const& event, Tone tone)
{
    if (!isInIteration_) {
        isInIteration_ = true;
        ++iteration_;
        QMetaObject::invokeMethod(this, &Timeline::EndIteration, Qt::QueuedConnection);
    }
    int const row = rowCount();
    insertRow(row);
    setItem(row, 0, NewCell(locale().toString(iteration_)));
    setItem(row, 1, NewCell(object));
    QTableWidgetItem* const eventCell = NewCell(event);
    eventCell->setData(ToneDelegate::ToneRole, static_cast<int>(tone));
    setItem(row, 2, eventCell);
    scrollToBottom();
}

void Timeline::Clear()
{
    setRowCount(0);
    iteration_ = 0;
}

void Timeline::EndIteration()
{
    isInIteration_ = false;
}

} // namespace Zelkor::Gallery
