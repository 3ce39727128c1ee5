#pragma once

/// \file
/// Frames, and box layouts that can be filled in one statement. Use these classes on the GUI thread.

#include <Base/Export.h>

#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QFrame>

#include <initializer_list>
#include <variant>

namespace Zelkor
{
namespace Widget
{
namespace LayoutHelpers
{

/// The size policy of a spacer.
enum class SpacerPolicy : int {
    Fixed = 0,  ///< the spacer keeps its size
    Stretch = 1 ///< the spacer expands into free space; the size that the caller passes is its minimum size
};

/// An item of a box layout: a widget or a spacer.
class ZQTUTIL_EXPORT BoxItem
{
public:
    /// Creates an item for \a widget with the stretch factor \a stretch. The item does not own \a widget. If \a widget
    /// is null, AppendTo() does nothing.
    BoxItem(QWidget* widget, int stretch = 0);

    /// Creates an item for a spacer.
    ///
    /// \param policy  the size policy in the direction of the layout
    /// \param size    the size in pixels in the direction of the layout
    BoxItem(SpacerPolicy policy, int size);

    /// Appends the widget or the spacer to \a layout. For a spacer, this function creates a QSpacerItem, which
    /// \a layout owns.
    void AppendTo(QBoxLayout& layout) const;

private:
    std::variant<QWidget*, SpacerPolicy> item_;
    int amount_; // for a widget: its stretch factor; for a spacer: its size in pixels
};

} // namespace LayoutHelpers

/// A frame for a part of a dialog. Style sheets can select the frame by its class.
class ZQTUTIL_EXPORT MFrame : public QFrame
{
    Q_OBJECT

public:
    /// Creates a frame without a border. \a parent can be null; otherwise it owns the frame.
    explicit MFrame(QWidget* parent = nullptr);
};

/// A box layout that can be filled in one statement.
///
/// \code
/// auto* const layout = new MVBoxLayout(frame);
/// layout->addItems({{label, 0}, {lineEdit, 0}, {LayoutHelpers::SpacerPolicy::Stretch, 0}});
/// \endcode
class ZQTUTIL_EXPORT MBoxLayout : public QBoxLayout
{
    Q_OBJECT

public:
    /// Creates an empty layout.
    ///
    /// \param direction  the direction in which items are placed
    /// \param parent     the widget that uses and owns the layout; may be null
    explicit MBoxLayout(Direction direction, QWidget* parent = nullptr);

    /// Appends \a items in the given order.
    void addItems(std::initializer_list<LayoutHelpers::BoxItem> items);

    /// Appends the child widgets of the layout's parent widget, in the order of QObject::children().
    ///
    /// Skips child widgets that are windows, and child widgets that this layout or one of its nested layouts already
    /// contains. Does nothing if the layout has no parent widget.
    void autoFill();
};

/// An MBoxLayout that places its items from top to bottom.
class ZQTUTIL_EXPORT MVBoxLayout : public MBoxLayout
{
    Q_OBJECT

public:
    /// Creates an empty layout. If \a parent is not null, installs the layout on \a parent, which owns it.
    explicit MVBoxLayout(QWidget* parent = nullptr);
};

} // namespace Widget
} // namespace Zelkor
