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

/// Sends the enter and leave events of each member to all other members. The `:hover` rules of a style sheet then apply
/// to all members at the same time, for example to an icon and its label, or to the cells of a row.
///
/// \code
/// auto* const group = new HoverGroup(tile);
/// group->addItem(icon);
/// group->addItem(title);
/// \endcode
///
/// **Ownership.** The parent owns the group. The group does not own its members. A member can be destroyed at any time,
/// also while the group sends an event.
///
/// **Thread.** GUI thread.
class ZQTUTIL_EXPORT HoverGroup : public QObject
{
    Q_OBJECT

public:
    /// Creates a group without members. \a parent owns it and can be null.
    explicit HoverGroup(QWidget* parent);

    /// Adds \a widget and sets its attribute `Qt::WA_Hover`, so that it receives hover events. If it is already a
    /// member, only its recorded hover state is reset. Null is ignored.
    void addItem(QWidget* widget);

    /// Removes \a widget. It no longer sends its hover events to the members and receives none from them. The attribute
    /// `Qt::WA_Hover` remains set. Ignores a widget that is not a member.
    void removeItem(QWidget* widget);

    /// Sends \a event to the other members if it is an enter or leave event of the member \a watched.
    ///
    /// \returns the result of the base class, so that \a watched receives the event too; true if a receiver destroyed
    ///          \a watched
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Member
    {
        QPointer<QWidget> widget;         // null after the widget is destroyed
        QEvent::Type last = QEvent::None; // the last hover event that the widget received or was sent
    };

    void replayToOthers(QWidget* hovered, QEvent* event);

    // The keys are plain addresses: a QPointer as key would change the order when its widget is destroyed.
    std::map<QWidget*, Member> members_;
    QEvent const* replayed_ = nullptr; // the event that is being sent to the other members
};

} // namespace Util
} // namespace Zelkor
