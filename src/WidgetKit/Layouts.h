#pragma once

/// \file
/// Frames, and box layouts that are filled in one statement.

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

/// What a spacer does with room that nobody else wants.
enum class SpacerPolicy : int {
    Fixed = 0,  ///< keeps its size
    Stretch = 1 ///< takes all of it, its size being the least
};

/// One item of a box layout: a widget, or a spacer.
class ZQTUTIL_EXPORT BoxItem
{
public:
    /// A \a widget, borrowed, with its \a stretch factor.
    BoxItem(QWidget* widget, int stretch = 0);

    /// A spacer of \a size pixels, in the direction of the layout.
    BoxItem(SpacerPolicy policy, int size);

    /// Appends it to \a layout, which takes over what it makes; a null widget is left out.
    void AppendTo(QBoxLayout& layout) const;

private:
    std::variant<QWidget*, SpacerPolicy> item_;
    int amount_; // the stretch factor of a widget, the size of a spacer
};

} // namespace LayoutHelpers

/// A plain frame, to hold a part of a dialog and to be named by style sheets.
class ZQTUTIL_EXPORT MFrame : public QFrame
{
    Q_OBJECT

public:
    /// A frame without a border, owned by \a parent, if any.
    explicit MFrame(QWidget* parent = nullptr);
};

/// A box layout that is filled in one statement.
///
/// \code
/// auto* const layout = new MVBoxLayout(frame);
/// layout->addItems({{label, 0}, {lineEdit, 0}, {LayoutHelpers::SpacerPolicy::Stretch, 0}});
/// \endcode
class ZQTUTIL_EXPORT MBoxLayout : public QBoxLayout
{
    Q_OBJECT

public:
    /// An empty layout in \a direction, which is that of \a parent, if given.
    explicit MBoxLayout(Direction direction, QWidget* parent = nullptr);

    /// Appends \a items, in their order.
    void addItems(std::initializer_list<LayoutHelpers::BoxItem> items);

    /// Appends the child widgets of the widget whose layout this is, in the order in which they were made; windows, and
    /// what stands in the layout already, stay out. Nothing without a widget.
    void autoFill();
};

/// An MBoxLayout from top to bottom.
class ZQTUTIL_EXPORT MVBoxLayout : public MBoxLayout
{
    Q_OBJECT

public:
    /// An empty layout, which is that of \a parent, if given.
    explicit MVBoxLayout(QWidget* parent = nullptr);
};

} // namespace Widget
} // namespace Zelkor
