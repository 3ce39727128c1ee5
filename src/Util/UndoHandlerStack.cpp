#include <Util/UndoHandlerStack.h>

#include <Base/Throw.h>

#include <QtWidgets/QUndoGroup>
#include <QtWidgets/QUndoStack>

#include <stdexcept>

namespace Zelkor::Util
{

UndoHandlerStack::UndoHandlerStack(QObject* parent)
    : QObject(parent)
    , group(new QUndoGroup(this))
{
    connect(group, SIGNAL(canRedoChanged(bool)), this, SIGNAL(canRedoChanged(bool)));
    connect(group, SIGNAL(canUndoChanged(bool)), this, SIGNAL(canUndoChanged(bool)));
    connect(group, SIGNAL(cleanChanged(bool)), this, SIGNAL(cleanChanged(bool)));
    connect(group, SIGNAL(indexChanged(int)), this, SIGNAL(indexChanged(int)));
}

void UndoHandlerStack::push(QUndoStack* stack)
{
    if (!stack) {
        ZELKOR_THROW(std::invalid_argument("UndoHandlerStack use without stack!"));
    }
    stacks.push(stack);
    group->addStack(stack);
    group->setActiveStack(stack);
}

QUndoStack* UndoHandlerStack::pop()
{
    if (stacks.isEmpty()) {
        return nullptr;
    }
    QUndoStack* const popped = stacks.pop();
    // Before the removal, which would announce that there is no active stack at all.
    group->setActiveStack(stacks.isEmpty() ? nullptr : stacks.top());
    group->removeStack(popped);
    return popped;
}

QUndoStack* UndoHandlerStack::activeStack() const
{
    return group->activeStack();
}

void UndoHandlerStack::undo()
{
    group->undo();
}

void UndoHandlerStack::redo()
{
    group->redo();
}

bool UndoHandlerStack::canUndo() const
{
    return group->canUndo();
}

bool UndoHandlerStack::canRedo() const
{
    return group->canRedo();
}

bool UndoHandlerStack::empty() const
{
    return stacks.isEmpty();
}

} // namespace Zelkor::Util
