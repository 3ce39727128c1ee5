#include <Util/HoverGroup.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QScopeGuard>

#include <utility>
#include <vector>

namespace Zelkor::Util
{

namespace
{

bool IsHover(QEvent::Type type)
{
    switch (type) {
    case QEvent::Enter:
    case QEvent::Leave:
    case QEvent::HoverEnter:
    case QEvent::HoverLeave:
        return true;
    default:
        return false;
    }
}

} // namespace

HoverGroup::HoverGroup(QWidget* parent)
    : QObject(parent)
{}

void HoverGroup::addItem(QWidget* widget)
{
    if (!widget) {
        return;
    }
    members_[widget] = {widget, QEvent::None};
    widget->setAttribute(Qt::WA_Hover);
    widget->installEventFilter(this);
}

void HoverGroup::removeItem(QWidget* widget)
{
    members_.erase(widget);
}

bool HoverGroup::eventFilter(QObject* watched, QEvent* event)
{
    if (!IsHover(event->type())) {
        return QObject::eventFilter(watched, event);
    }
    auto const hovered = members_.find(static_cast<QWidget*>(watched)); // the group filters widgets only
    if (hovered == members_.end()) {
        return QObject::eventFilter(watched, event);
    }
    // Before anything is sent: what the others get comes back here, and must not come back to this one.
    hovered->second.last = event->type();
    if (event == replayed_) {
        return QObject::eventFilter(watched, event);
    }

    QPointer<HoverGroup> const self(this);
    QPointer<QObject> const receiver(watched);
    QEvent const* const replayedBefore = std::exchange(replayed_, event);
    {
        auto const replayEnds = qScopeGuard([&] { // also when a member throws
            if (self) {
                replayed_ = replayedBefore;
            }
        });
        replayToOthers(hovered->first, event);
    }
    // Without a receiver, nobody is left whom Qt could hand the event.
    return !receiver || (self && QObject::eventFilter(watched, event));
}

void HoverGroup::replayToOthers(QWidget* hovered, QEvent* event)
{
    std::vector<QWidget*> addresses;
    addresses.reserve(members_.size());
    for (auto const& [address, member] : members_) {
        addresses.push_back(address);
    }

    QPointer<HoverGroup> const self(this);
    for (QWidget* const address : addresses) {
        auto const found = members_.find(address);
        if (address == hovered || found == members_.end()) {
            continue;
        }
        Member& member = found->second;
        if (!member.widget) {
            members_.erase(found);
            continue;
        }
        if (member.last == event->type()) {
            continue;
        }
        member.last = event->type();
        QCoreApplication::sendEvent(address, event);
        if (!self) {
            return;
        }
    }
}

} // namespace Zelkor::Util
