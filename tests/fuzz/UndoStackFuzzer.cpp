// Fuzzes the stack of undo stacks. Each byte of an input selects an operation; see Session::Perform().

#include <fuzz/Fuzzing.h>

#include <Util/UndoHandlerStack.h>

#include <QtWidgets/QUndoCommand>
#include <QtWidgets/QUndoStack>

#include <array>
#include <memory>
#include <vector>

using Zelkor::Testing::FuzzInput;
using Zelkor::Testing::RequireEqual;
using Zelkor::Util::UndoHandlerStack;

namespace
{

/// An undo stack and its expected state.
struct Document
{
    bool CanUndo() const { return index > 0; }
    bool CanRedo() const { return index < commands; }
    bool IsClean() const { return index == cleanIndex; }

    std::unique_ptr<QUndoStack> stack = std::make_unique<QUndoStack>();
    int commands = 0;
    int index = 0;
    int cleanIndex = 0; // -1 if the clean state can no longer be reached
};

/// The state that an application would show. Only the signals of the UndoHandlerStack change it.
struct ShownState
{
    bool canUndo = false;
    bool canRedo = false;
    bool isClean = true;
    int index = 0;
};

/// Performs operations on an UndoHandlerStack, and records the documents whose undo stacks should be on it. Also pushes
/// an undo stack several times, and deletes undo stacks that are still pushed.
class Session
{
public:
    Session()
    {
        QObject::connect(&handlers_, &UndoHandlerStack::canUndoChanged, [this](bool value) { shown_.canUndo = value; });
        QObject::connect(&handlers_, &UndoHandlerStack::canRedoChanged, [this](bool value) { shown_.canRedo = value; });
        QObject::connect(&handlers_, &UndoHandlerStack::cleanChanged, [this](bool value) { shown_.isClean = value; });
        QObject::connect(&handlers_, &UndoHandlerStack::indexChanged, [this](int value) { shown_.index = value; });
        QObject::connect(&handlers_, &UndoHandlerStack::indexChanged, [this] { ++signals_; });
    }

    void Perform(FuzzInput& input)
    {
        switch (input.Byte()) {
        case '(':
            Push(TakeDocument(input));
            break;
        case ')':
            Pop();
            break;
        case 'x':
            Delete(TakeDocument(input));
            break;
        case 'u':
            handlers_.undo();
            if (active_) {
                Undo(*active_);
            }
            break;
        case 'r':
            handlers_.redo();
            if (active_) {
                Redo(*active_);
            }
            break;
        case 'c':
            AddCommand(TakeDocument(input));
            break;
        case 's': {
            Document& document = TakeDocument(input);
            document.stack->setClean();
            document.cleanIndex = document.index;
            break;
        }
        case 'U': {
            Document& document = TakeDocument(input);
            document.stack->undo();
            Undo(document);
            break;
        }
        case 'R': {
            Document& document = TakeDocument(input);
            document.stack->redo();
            Redo(document);
            break;
        }
        default:
            break;
        }
        CheckState();
    }

private:
    Document& TakeDocument(FuzzInput& input) { return documents_[input.Byte() % documents_.size()]; }

    /// Pushes \a document, even if it is already pushed.
    void Push(Document& document)
    {
        handlers_.push(document.stack.get());
        entries_.push_back(&document);
        active_ = &document;
    }

    void Pop()
    {
        if (entries_.empty()) {
            signals_ = 0;
            RequireEqual(handlers_.pop() == nullptr, true, "pop without stacks returns null");
            RequireEqual(signals_, 0, "signals of a pop without stacks");
            return;
        }
        Document* const popped = entries_.back();
        RequireEqual(handlers_.pop() == (popped ? popped->stack.get() : nullptr), true,
                     "popped stack is the top entry");
        entries_.pop_back();
        active_ = entries_.empty() ? nullptr : entries_.back();
        if (active_ == popped) {
            active_ = nullptr; // documented for a stack that was pushed twice in succession
        }
    }

    /// Replaces \a document with a new document. This deletes the old undo stack, but keeps its entries.
    void Delete(Document& document)
    {
        document = Document();
        std::replace(entries_.begin(), entries_.end(), &document, static_cast<Document*>(nullptr));
        if (active_ == &document) {
            active_ = nullptr;
        }
    }

    void AddCommand(Document& document)
    {
        document.stack->push(new QUndoCommand);
        if (document.cleanIndex > document.index) {
            document.cleanIndex = -1; // the commands after the index are deleted
        }
        document.commands = ++document.index;
    }

    void Undo(Document& document)
    {
        if (document.CanUndo()) {
            --document.index;
        }
    }

    void Redo(Document& document)
    {
        if (document.CanRedo()) {
            ++document.index;
        }
    }

    void CheckState() const
    {
        RequireEqual(handlers_.empty(), entries_.empty(), "no stack is pushed");
        RequireEqual(handlers_.activeStack() == (active_ ? active_->stack.get() : nullptr), true,
                     "active stack is correct");
        RequireEqual(handlers_.canUndo(), active_ && active_->CanUndo(), "active stack can undo");
        RequireEqual(handlers_.canRedo(), active_ && active_->CanRedo(), "active stack can redo");
        RequireEqual(shown_.canUndo, handlers_.canUndo(), "last value of canUndoChanged");
        RequireEqual(shown_.canRedo, handlers_.canRedo(), "last value of canRedoChanged");
        RequireEqual(shown_.isClean, !active_ || active_->IsClean(), "last value of cleanChanged");
        RequireEqual(shown_.index, active_ ? active_->index : 0, "last value of indexChanged");
    }

    std::array<Document, 4> documents_;
    UndoHandlerStack handlers_;
    std::vector<Document*> entries_; // an entry is null if its undo stack was deleted
    Document* active_ = nullptr;
    ShownState shown_;
    int signals_ = 0;
};

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    FuzzInput input(data, size);
    Session session;
    while (!input.AtEnd()) {
        session.Perform(input);
    }
    return 0;
}
