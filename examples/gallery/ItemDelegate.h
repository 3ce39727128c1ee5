#pragma once

/// \file
/// The item delegate for a SimpleModel in a Qt Widgets view.

#include <QtWidgets/QStyledItemDelegate>

namespace Zelkor
{
namespace Gallery
{

/// Shows the title and the icon of an item. The standard delegate cannot show them, because SimpleModel has its own
/// roles for titles and icons.
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
