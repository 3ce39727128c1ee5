#include "Timeline.h"

#include "ToneDelegate.h"
#include "Widgets.h"

namespace Zelkor::Gallery
{

Timeline::Timeline(QWidget* parent)
    : QTableWidget(parent)
{
    SetUpTable(this, {tr("Turn"), tr("Object"), tr("Event")});
    setItemDelegate(new ToneDelegate(this));
    setAccessibleName(tr("Timeline"));
}

void Timeline::Add(QString const& who, QString const& what, Tone tone)
{
    if (!isInTurn_) {
        isInTurn_ = true;
        ++turn_;
        QMetaObject::invokeMethod(this, &Timeline::EndTurn, Qt::QueuedConnection);
    }
    int const row = rowCount();
    insertRow(row);
    setItem(row, 0, NewCell(locale().toString(turn_)));
    setItem(row, 1, NewCell(who));
    QTableWidgetItem* const event = NewCell(what);
    event->setData(ToneDelegate::ToneRole, static_cast<int>(tone));
    setItem(row, 2, event);
    scrollToBottom();
}

void Timeline::Clear()
{
    setRowCount(0);
    turn_ = 0;
}

void Timeline::EndTurn()
{
    isInTurn_ = false;
}

} // namespace Zelkor::Gallery
