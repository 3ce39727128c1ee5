#include "ItemDelegate.h"

#include <Util/Model/SimpleModel/SimpleModel.h>

#include <QtCore/QUrl>
#include <QtGui/QIcon>

namespace Zelkor::Gallery
{

using Util::SimpleModel;

void ItemDelegate::initStyleOption(QStyleOptionViewItem* option, QModelIndex const& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    // SimpleModel returns the icon path as a URL for QML ("qrc:/icons/..."). QIcon requires a resource path instead
    // (":/icons/...").
    QUrl const icon(index.data(SimpleModel::IconPath).toString());
    option->icon = QIcon(QLatin1Char(':') + icon.path());
    option->text = index.data(SimpleModel::Title).toString();
    option->features |= QStyleOptionViewItem::HasDecoration | QStyleOptionViewItem::HasDisplay;
}

} // namespace Zelkor::Gallery
