#pragma once

/// \file
/// Widgets that hover as one.

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

/// Replays entering and leaving one of several widgets to all others, so that the `:hover` looks of a style sheet light
/// up together: an icon with its label, the cells of a row.
///
/// \code
/// auto* const group = new HoverGroup(tile);
/// group->addItem(icon);
/// group->addItem(title);
/// \endcode
///
/// **Ownership.** The group belongs to its parent. Members are borrowed and may end at any time, also while an event is
/// replayed. GUI thread.
class ZQTUTIL_EXPORT HoverGroup : public QObject
{
    Q_OBJECT

public:
    /// A group without members, owned by \a parent, if any.
    explicit HoverGroup(QWidget* parent);

    /// Makes \a widget a member, and lets it have hover events. One that is a member already starts afresh; null is
    /// ignored.
    void addItem(QWidget* widget);

    /// Takes \a widget out: its events no longer reach the others, nor do theirs reach it. It keeps its hover events.
    void removeItem(QWidget* widget);

    /// Replays hover events of members to the other members; swallows nothing.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Member
    {
        QPointer<QWidget> widget;         // null once it has ended
        QEvent::Type last = QEvent::None; // that it received or was sent
    };

    void replayToOthers(QWidget* hovered, QEvent* event);

    // By address, which outlives the widget.
    std::map<QWidget*, Member> members_;
    QEvent const* replayed_ = nullptr; // what is being sent to the others right now
};

} // namespace Util
} // namespace Zelkor
