#pragma once

/// \file
/// An item delegate that draws text in the colour of its tone.

#include <QtWidgets/QStyledItemDelegate>

namespace Zelkor
{
namespace Gallery
{

/// Draws the text of an item in the colour of the item's Tone. For the role #ToneRole, the model returns the Tone as an
/// int.
class ToneDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    static constexpr int ToneRole = Qt::UserRole + 100;

    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, QModelIndex const& index) const override;
};

} // namespace Gallery
} // namespace Zelkor
