#include <Util/HoverGroup.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QScopeGuard>

#include <utility>
#include <vector>

// Design notes
//
// When a member receives a hover event (an enter or leave event), the group sends the same QEvent object to all other
// members. The group's event filter then sees that QEvent again, once for each of the other members. The filter
// compares the address of the QEvent with replayed_ to recognise these replayed events, and does not replay them again.
//
// An event handler of a member can destroy any widget or the group itself, and can add or remove members.
// replayToOthers() therefore iterates over a copy of the addresses. Before it sends the event to an address, it looks
// up the address in members_ again.

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
    // The cast is safe, because the event filter is installed only on widgets.
    auto const hovered = members_.find(static_cast<QWidget*>(watched));
    if (hovered == members_.end()) {
        return QObject::eventFilter(watched, event);
    }
    // Record the type before the replay. During the replay, another member can receive a new event of the same type.
    // The group must not send this new event to the watched widget.
    hovered->second.last = event->type();
    if (event == replayed_) {
        return QObject::eventFilter(watched, event);
    }

    QPointer<HoverGroup> const self(this);
    QPointer<QObject> const receiver(watched);
    QEvent const* const replayedBefore = std::exchange(replayed_, event);
    {
        auto const replayGuard = qScopeGuard([&] { // runs even if an event handler of a member throws
            if (self) {
                replayed_ = replayedBefore;
            }
        });
        replayToOthers(hovered->first, event);
    }
    // If an event handler has destroyed the watched widget, return true so that Qt does not deliver the event to it.
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
