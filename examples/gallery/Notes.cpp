#include "Notes.h"

#include <QtWidgets/QUndoCommand>

#include <functional>
#include <utility>

namespace Zelkor::Gallery
{
namespace
{

/// A command that calls one function for redo and another function for undo.
class Command : public QUndoCommand
{
public:
    Command(QString const& text, std::function<void()> redo, std::function<void()> undo)
        : QUndoCommand(text)
        , redo_(std::move(redo))
        , undo_(std::move(undo))
    {}

    void redo() override { redo_(); }
    void undo() override { undo_(); }

private:
    std::function<void()> const redo_;
    std::function<void()> const undo_;
};

} // namespace

int Notes::rowCount(QModelIndex const& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(notes_.size());
}

QVariant Notes::data(QModelIndex const& index, int role) const
{
    if (!index.isValid()) {
        return {};
    }
    Note const& note = notes_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
        return note.text;
    case Qt::DecorationRole:
        return note.colour;
    default:
        return {};
    }
}

void Notes::Insert(int row, Note const& note)
{
    beginInsertRows({}, row, row);
    notes_.insert(notes_.begin() + row, note);
    endInsertRows();
}

Note Notes::Take(int row)
{
    beginRemoveRows({}, row, row);
    auto const at = notes_.begin() + row;
    Note note = *at;
    notes_.erase(at);
    endRemoveRows();
    return note;
}

void Notes::Replace(std::vector<Note> notes)
{
    beginResetModel();
    notes_ = std::move(notes);
    endResetModel();
}

void Notes::SetColour(int row, QColor const& colour)
{
    notes_[static_cast<std::size_t>(row)].colour = colour;
    Q_EMIT dataChanged(index(row), index(row), {Qt::DecorationRole});
}

QUndoCommand* NewAddCommand(Notes* notes, Note const& note)
{
    int const row = notes->rowCount();
    return new Command(
        Notes::tr("Add"), [=] { notes->Insert(row, note); }, [=] { notes->Take(row); });
}

QUndoCommand* NewRemoveCommand(Notes* notes, int row)
{
    Note const note = notes->All()[static_cast<std::size_t>(row)];
    return new Command(
        Notes::tr("Remove"), [=] { notes->Take(row); }, [=] { notes->Insert(row, note); });
}

QUndoCommand* NewColourCommand(Notes* notes, int row, QColor const& colour)
{
    QColor const before = notes->All()[static_cast<std::size_t>(row)].colour;
    return new Command(
        Notes::tr("Colour"), [=] { notes->SetColour(row, colour); }, [=] { notes->SetColour(row, before); });
}

QUndoCommand* NewReplaceCommand(Notes* notes, std::vector<Note> const& others)
{
    std::vector<Note> const before = notes->All();
    return new Command(
        Notes::tr("Colours"), [=] { notes->Replace(others); }, [=] { notes->Replace(before); });
}

} // namespace Zelkor::Gallery
