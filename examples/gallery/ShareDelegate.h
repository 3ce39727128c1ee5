#pragma once

/// \file
/// An item delegate that draws a share of a total as a bar.

#include <QtWidgets/QStyledItemDelegate>

namespace Zelkor
{
namespace Gallery
{

/// Draws a bar whose length shows the cell's value for the role FolderSizesModel::ShareRole. Draws the text of the cell
/// to the right of the bar.
class ShareDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, QStyleOptionViewItem const& option, QModelIndex const& index) const override;
};

} // namespace Gallery
} // namespace Zelkor
