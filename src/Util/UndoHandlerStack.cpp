#include <Util/UndoHandlerStack.h>

#include <Base/Throw.h>

#include <QtWidgets/QUndoGroup>
#include <QtWidgets/QUndoStack>

#include <stdexcept>

namespace Zelkor::Util
{

UndoHandlerStack::UndoHandlerStack(QObject* parent)
    : QObject(parent)
    , group_(new QUndoGroup(this))
{
    connect(group_, SIGNAL(canRedoChanged(bool)), this, SIGNAL(canRedoChanged(bool)));
    connect(group_, SIGNAL(canUndoChanged(bool)), this, SIGNAL(canUndoChanged(bool)));
    connect(group_, SIGNAL(cleanChanged(bool)), this, SIGNAL(cleanChanged(bool)));
    connect(group_, SIGNAL(indexChanged(int)), this, SIGNAL(indexChanged(int)));
}

void UndoHandlerStack::push(QUndoStack* stack)
{
    if (!stack) {
        ZELKOR_THROW(std::invalid_argument("UndoHandlerStack use without stack!"));
    }
    stacks_.push(stack);
    group_->addStack(stack);
    group_->setActiveStack(stack);
}

QUndoStack* UndoHandlerStack::pop()
{
    if (stacks_.isEmpty()) {
        return nullptr;
    }
    QPointer<QUndoStack> const popped = stacks_.pop();
    QUndoStack* const next = stacks_.isEmpty() ? nullptr : stacks_.top().data();
    // If the next stack was pushed twice, an earlier pop() has removed it from the group. Add it again. Otherwise the
    // group would keep a dangling pointer to the active stack when this stack is destroyed.
    if (next) {
        group_->addStack(next);
    }
    // Activate the next stack before removing the popped stack. Otherwise, removeStack() would deactivate the popped
    // stack and emit signals for a state in which no stack is active.
    group_->setActiveStack(next);
    group_->removeStack(popped);
    return popped;
}

QUndoStack* UndoHandlerStack::activeStack() const
{
    return group_->activeStack();
}

void UndoHandlerStack::undo()
{
    group_->undo();
}

void UndoHandlerStack::redo()
{
    group_->redo();
}

bool UndoHandlerStack::canUndo() const
{
    return group_->canUndo();
}

bool UndoHandlerStack::canRedo() const
{
    return group_->canRedo();
}

bool UndoHandlerStack::empty() const
{
    return stacks_.isEmpty();
}

} // namespace Zelkor::Util
