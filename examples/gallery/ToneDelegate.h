#pragma once

/// \file
/// Table cells in the colour of their tone.

#include <QtWidgets/QStyledItemDelegate>

namespace Zelkor
{
namespace Gallery
{

/// Draws text in the colour of the Tone that the item has under #ToneRole, as an int.
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
