#pragma once

/// \file
/// An item delegate that draws a share of a total as a bar.

#include <QtWidgets/QStyledItemDelegate>

namespace Zelkor
{
namespace Gallery
{

/// Draws the FolderSizesModel::ShareRole of a cell as a bar, and draws the text of the cell to the right of the bar.
class ShareDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, QStyleOptionViewItem const& option, QModelIndex const& index) const override;
};

} // namespace Gallery
} // namespace Zelkor
