#pragma once

/// \file
/// The undo stack of whatever is open on top.

#include <Util/Export.h>

#include <QtCore/QObject>
#include <QtCore/QStack>

QT_BEGIN_NAMESPACE
class QUndoGroup;
class QUndoStack;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Util
{

/// A stack of undo stacks: a dialog or an editor mode pushes its own when it opens and pops it when it closes, and the
/// application's Undo and Redo commands always act on the one on top.
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
/// **Ownership.** The stacks are borrowed. Pop a stack before it ends: one that ends while it is pushed drops out of
/// the group behind this object, but not out of the order of stacks.
///
/// **Threads.** Used on the thread it lives on, normally the GUI thread.
class ZQTUTIL_EXPORT UndoHandlerStack : public QObject
{
    Q_OBJECT

public:
    /// An empty stack of stacks, owned by \a parent, if any.
    explicit UndoHandlerStack(QObject* parent = nullptr);

    /// Puts \a stack on top and makes it the active one; the signals tell how its state differs.
    ///
    /// Throws `std::invalid_argument` ("UndoHandlerStack use without stack!") when \a stack is null; nothing has
    /// changed then.
    void push(QUndoStack* stack);

    /// Takes the stack on top off and returns it, to the caller that owns it; the one below is active then, if there is
    /// one. Null, and no signal, when none is pushed.
    QUndoStack* pop();

    /// The stack that undo() and redo() act on; null when there is none.
    QUndoStack* activeStack() const;

    /// Undoes the last command of the active stack, if there is one.
    void undo();
    /// Redoes the next command of the active stack, if there is one.
    void redo();
    /// Whether the active stack has a command to undo; false without one.
    bool canUndo() const;
    /// Whether the active stack has a command to redo; false without one.
    bool canRedo() const;

    /// Whether no stack is pushed.
    bool empty() const;

Q_SIGNALS:
    /// Whether there is something to redo, when another stack became active or the active one changed.
    void canRedoChanged(bool canRedo);
    /// Whether there is something to undo, likewise.
    void canUndoChanged(bool canUndo);
    /// Whether the active stack is in its clean state, likewise.
    void cleanChanged(bool clean);
    /// The index of the active stack's current command, likewise.
    void indexChanged(int idx);

private:
    QUndoGroup* group_;
    QStack<QUndoStack*> stacks_;
};

} // namespace Util
} // namespace Zelkor
