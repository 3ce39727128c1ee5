#include <WidgetKit/Layouts.h>

#include <QtWidgets/QSpacerItem>

namespace Zelkor::Widget
{

namespace
{

/// Returns true if \a layout or one of its nested layouts contains \a widget.
bool Contains(QLayout const& layout, QWidget const* widget)
{
    for (int i = 0; i < layout.count(); ++i) {
        QLayoutItem* const item = layout.itemAt(i);
        QLayout const* const nested = item->layout();
        if (item->widget() == widget || (nested && Contains(*nested, widget))) {
            return true;
        }
    }
    return false;
}

} // namespace

namespace LayoutHelpers
{

namespace
{

QSpacerItem* CreateSpacerItem(QBoxLayout::Direction direction, SpacerPolicy policy, int size)
{
    auto const along = policy == SpacerPolicy::Stretch ? QSizePolicy::MinimumExpanding : QSizePolicy::Fixed;
    bool const vertical = direction == QBoxLayout::TopToBottom || direction == QBoxLayout::BottomToTop;
    return vertical ? new QSpacerItem(0, size, QSizePolicy::Minimum, along)
                    : new QSpacerItem(size, 0, along, QSizePolicy::Minimum);
}

} // namespace

BoxItem::BoxItem(QWidget* widget, int stretch)
    : item_(widget)
    , amount_(stretch)
{}

BoxItem::BoxItem(SpacerPolicy policy, int size)
    : item_(policy)
    , amount_(size)
{}

void BoxItem::AppendTo(QBoxLayout& layout) const
{
    if (auto const* const policy = std::get_if<SpacerPolicy>(&item_)) {
        layout.addSpacerItem(CreateSpacerItem(layout.direction(), *policy, amount_));
    } else if (QWidget* const widget = std::get<QWidget*>(item_)) {
        layout.addWidget(widget, amount_);
    }
}

} // namespace LayoutHelpers

MFrame::MFrame(QWidget* parent)
    : QFrame(parent)
{}

MBoxLayout::MBoxLayout(Direction direction, QWidget* parent)
    : QBoxLayout(direction, parent)
{}

void MBoxLayout::addItems(std::initializer_list<LayoutHelpers::BoxItem> items)
{
    for (auto const& item : items) {
        item.AppendTo(*this);
    }
}

void MBoxLayout::autoFill()
{
    QWidget const* const widget = parentWidget();
    if (!widget) {
        return;
    }
    auto const children = widget->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget* const child : children) {
        if (!child->isWindow() && !Contains(*this, child)) {
            addWidget(child);
        }
    }
}

MVBoxLayout::MVBoxLayout(QWidget* parent)
    : MBoxLayout(TopToBottom, parent)
{}

} // namespace Zelkor::Widget
