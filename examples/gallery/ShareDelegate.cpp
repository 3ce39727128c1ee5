#include "ShareDelegate.h"

#include "FolderSizesModel.h"

#include <QtGui/QPainter>
#include <QtWidgets/QApplication>

#include <cmath>
#include <utility>

namespace Zelkor::Gallery
{
namespace
{

constexpr int Margin = 5;
constexpr int BarHeight = 8;
constexpr qreal TrackOpacity = 0.15;

void FillRounded(QPainter* painter, QRectF const& area)
{
    qreal const radius = area.height() / 2;
    painter->drawRoundedRect(area, radius, radius);
}

} // namespace

void ShareDelegate::paint(QPainter* painter, QStyleOptionViewItem const& option, QModelIndex const& index) const
{
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    QString const text = std::exchange(item.text, QString());
    QStyle const* const style = item.widget ? item.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &item, painter, item.widget);

    QVariant const share = index.data(FolderSizesModel::ShareRole);
    if (!share.isValid()) {
        return;
    }
    bool const isSelected = item.state.testFlag(QStyle::State_Selected);
    QPalette::ColorGroup const group =
        item.state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
    QColor const textColor = item.palette.color(group, isSelected ? QPalette::HighlightedText : QPalette::Text);
    QColor const barColor = isSelected ? textColor : item.palette.color(group, QPalette::Highlight);

    QRect const area = item.rect.adjusted(Margin, 0, -Margin, 0);
    int const textWidth = item.fontMetrics.horizontalAdvance(FolderSizesModel::tr("%1 %").arg(QLatin1String("100.0")));
    QRectF bar(area.left(), area.center().y() - BarHeight / 2.0 + 0.5, area.width() - textWidth - Margin, BarHeight);

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(textColor);
    painter->setFont(item.font);
    painter->drawText(area, Qt::AlignRight | Qt::AlignVCenter, text);
    painter->setPen(Qt::NoPen);
    painter->setBrush(barColor);
    painter->setOpacity(TrackOpacity);
    FillRounded(painter, bar);
    painter->setOpacity(1);
    painter->setClipRect(QRectF(bar.topLeft(), QSizeF(std::ceil(bar.width() * share.toDouble()), bar.height())));
    FillRounded(painter, bar);
    painter->restore();
}

} // namespace Zelkor::Gallery
