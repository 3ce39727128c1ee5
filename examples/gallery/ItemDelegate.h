#pragma once

/// \file
/// How a view of Qt Widgets shows a SimpleModel.

#include <QtWidgets/QStyledItemDelegate>

namespace Zelkor
{
namespace Gallery
{

/// Shows the title and the icon of an item, which a SimpleModel has under roles of its own.
class ItemDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, QModelIndex const& index) const override;
};

} // namespace Gallery
} // namespace Zelkor
