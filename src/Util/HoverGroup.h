#pragma once

/// \file
/// A group of widgets that share their hover state.

#include <Util/Export.h>

#include <QtCore/QEvent>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

#include <map>

namespace Zelkor
{
namespace Util
{

/// A group of widgets, called members. When a member receives an enter or leave event, the group sends the event to all
/// other members. The `:hover` rules of a style sheet then apply to all members at the same time, for example to an
/// icon and its label, or to the cells of a row.
///
/// \code
/// auto* const group = new HoverGroup(tile);
/// group->addItem(icon);
/// group->addItem(title);
/// \endcode
///
/// **Ownership.** The parent owns the group. The group does not own its members. A member can be destroyed at any time,
/// even while the group sends an event.
///
/// **Thread.** Use the object on the GUI thread.
class ZQTUTIL_EXPORT HoverGroup : public QObject
{
    Q_OBJECT

public:
    /// Creates a group without members. \a parent owns the group and can be null.
    explicit HoverGroup(QWidget* parent);

    /// Adds \a widget to the group and sets its attribute `Qt::WA_Hover`, so that it receives hover events. If
    /// \a widget is already a member, the group discards the hover state that it has recorded for \a widget. A null
    /// \a widget is ignored.
    void addItem(QWidget* widget);

    /// Removes \a widget from the group. Does not reset the attribute `Qt::WA_Hover` of \a widget. Ignores a widget
    /// that is not a member.
    void removeItem(QWidget* widget);

    /// If \a watched is a member and \a event is an enter or leave event, sends \a event to the other members. Skips
    /// the members whose last hover event had the same type. Does not send \a event again if the group itself has sent
    /// it to \a watched.
    ///
    /// \returns true if \a watched was destroyed while the event was sent; otherwise the result of the base class, so
    ///          that \a watched receives the event too
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Member
    {
        QPointer<QWidget> widget;         // null after the widget has been destroyed
        QEvent::Type last = QEvent::None; // the last hover event, either original or sent by the group
    };

    void replayToOthers(QWidget* hovered, QEvent* event);

    // The keys are plain addresses, because a key must not change when its widget is destroyed.
    std::map<QWidget*, Member> members_;
    QEvent const* replayed_ = nullptr; // the event that the group is sending to the other members; otherwise null
};

} // namespace Util
} // namespace Zelkor
