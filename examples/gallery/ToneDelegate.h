#pragma once

/// \file
/// An item delegate that draws text in the colour of its tone.

#include <QtWidgets/QStyledItemDelegate>

namespace Zelkor
{
namespace Gallery
{

/// Draws the text of an item in the colour of the item's Tone. The model returns the Tone as an int for the role
/// #ToneRole. An item without this value has Tone::Neutral.
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
