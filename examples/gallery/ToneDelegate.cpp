#include "ToneDelegate.h"

#include "Tone.h"

namespace Zelkor::Gallery
{

void ToneDelegate::initStyleOption(QStyleOptionViewItem* option, QModelIndex const& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    auto const tone = static_cast<Tone>(index.data(ToneRole).toInt());
    if (tone != Tone::Neutral) {
        option->palette.setColor(QPalette::Text, ToneColor(tone, option->palette));
    }
}

} // namespace Zelkor::Gallery
