#include <Util/HoverGroup.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QScopeGuard>

#include <utility>
#include <vector>

// Design notes
//
// One event object is sent to all other members. The event filter of the group sees the object again for each of these
// members. The address of the object distinguishes such a repetition from an event of the member itself. One hover
// event therefore costs one walk over the members instead of one walk for each member.
//
// Any receiver of an event can destroy members, other widgets and the group, or change the group. The walk therefore
// uses a copy of the addresses and finds each member in the map again.

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
    auto const hovered = members_.find(static_cast<QWidget*>(watched)); // the filter is installed on widgets only
    if (hovered == members_.end()) {
        return QObject::eventFilter(watched, event);
    }
    // Record the type before sending. Otherwise the other members would send the event back to this one.
    hovered->second.last = event->type();
    if (event == replayed_) {
        return QObject::eventFilter(watched, event);
    }

    QPointer<HoverGroup> const self(this);
    QPointer<QObject> const receiver(watched);
    QEvent const* const replayedBefore = std::exchange(replayed_, event);
    {
        auto const replayGuard = qScopeGuard([&] { // also if the event handler of a member throws
            if (self) {
                replayed_ = replayedBefore;
            }
        });
        replayToOthers(hovered->first, event);
    }
    // If the receiver is destroyed, true keeps Qt from delivering the event to it.
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
