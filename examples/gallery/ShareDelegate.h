#pragma once

/// \file
/// A share of a whole as a bar with its text beside it.

#include <QtWidgets/QStyledItemDelegate>

namespace Zelkor
{
namespace Gallery
{

/// Draws the FolderSizesModel::ShareRole of a cell as a bar, and the cell's text at the right of it.
class ShareDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, QStyleOptionViewItem const& option, QModelIndex const& index) const override;
};

} // namespace Gallery
} // namespace Zelkor
