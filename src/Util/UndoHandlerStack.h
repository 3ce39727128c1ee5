#pragma once

/// \file
/// A stack of undo stacks for nested dialogs and editor modes.

#include <Util/Export.h>

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QStack>

QT_BEGIN_NAMESPACE
class QUndoGroup;
class QUndoStack;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Util
{

/// A stack of undo stacks. A dialog or an editor mode pushes its undo stack when it opens, and pops it when it closes.
/// The Undo and Redo commands of the application always act on the topmost undo stack, which is the active one.
///
/// \code
/// QObject::connect(&undoHandlers, &UndoHandlerStack::canUndoChanged, undoAction, &QAction::setEnabled);
/// undoHandlers.push(&documentCommands);
/// ...
/// undoHandlers.push(dialog.commands());
/// dialog.exec();
/// undoHandlers.pop();
/// \endcode
///
/// **Ownership.** The caller owns the undo stacks. Pop an undo stack before it is destroyed. If a pushed undo stack is
/// destroyed, its entry remains in this object until pop() removes it, and pop() returns null for it. No stack is
/// active while the topmost entry is the entry of a destroyed stack.
///
/// **Stacks that are pushed more than once.** Do not push an undo stack that is already pushed, to this or to another
/// object. If a stack was pushed twice in succession, the first pop() makes no stack active, although one entry of the
/// stack remains. If another stack was pushed in between, the first stack becomes active again when the other stack is
/// popped.
///
/// **Thread.** Use the object on its own thread, normally the GUI thread.
class ZQTUTIL_EXPORT UndoHandlerStack : public QObject
{
    Q_OBJECT

public:
    /// Creates an object without undo stacks. \a parent owns the object and can be null.
    explicit UndoHandlerStack(QObject* parent = nullptr);

    /// Pushes \a stack and makes it the active undo stack. Emits the four signals of this class with the state of
    /// \a stack.
    ///
    /// Throws `std::invalid_argument` ("UndoHandlerStack use without stack!") and changes nothing if \a stack is null.
    void push(QUndoStack* stack);

    /// Removes the topmost undo stack. The undo stack below it, if any, becomes active. Does not delete the removed
    /// stack.
    ///
    /// \returns the removed stack, or null if it has been destroyed. If this object contains no undo stacks, returns
    /// null and emits no signal.
    QUndoStack* pop();

    /// Returns the undo stack that undo() and redo() act on, or null if no stack is active.
    QUndoStack* activeStack() const;

    /// Undoes the last executed command of the active stack. Does nothing if there is no command to undo.
    void undo();
    /// Redoes the next command of the active stack. Does nothing if there is no command to redo.
    void redo();
    /// Returns true if the active stack has a command to undo. Returns false if no stack is active.
    bool canUndo() const;
    /// Returns true if the active stack has a command to redo. Returns false if no stack is active.
    bool canRedo() const;

    /// Returns true if this object contains no entries. The entries of destroyed undo stacks count as entries too.
    bool empty() const;

Q_SIGNALS:
    /// Emitted when another stack becomes active, when no stack is active any more, and when the active stack emits
    /// `QUndoStack::canRedoChanged()`. \a canRedo is the result of canRedo().
    void canRedoChanged(bool canRedo);
    /// Emitted when another stack becomes active, when no stack is active any more, and when the active stack emits
    /// `QUndoStack::canUndoChanged()`. \a canUndo is the result of canUndo().
    void canUndoChanged(bool canUndo);
    /// Emitted when another stack becomes active, when no stack is active any more, and when the active stack emits
    /// `QUndoStack::cleanChanged()`. \a clean is true if the active stack is in its clean state, or if no stack is
    /// active.
    void cleanChanged(bool clean);
    /// Emitted when another stack becomes active, when no stack is active any more, and when the active stack emits
    /// `QUndoStack::indexChanged()`. \a idx is the `QUndoStack::index()` of the active stack, or 0 if no stack is
    /// active.
    void indexChanged(int idx);

private:
    QUndoGroup* group_;
    QStack<QPointer<QUndoStack>> stacks_;
};

} // namespace Util
} // namespace Zelkor
