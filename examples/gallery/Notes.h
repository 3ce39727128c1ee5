#pragma once

/// \file
/// The document of the Undo page, and functions that create undo commands for the document.

#include <QtCore/QAbstractListModel>
#include <QtGui/QColor>

#include <vector>

QT_BEGIN_NAMESPACE
class QUndoCommand;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Gallery
{

struct Note
{
    QString text;
    QColor colour;
};

/// A list model of notes. Returns the colour of a note for Qt::DecorationRole.
class Notes : public QAbstractListModel
{
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    int rowCount(QModelIndex const& parent = QModelIndex()) const override;
    QVariant data(QModelIndex const& index, int role) const override;

    std::vector<Note> const& All() const { return notes_; }

    // Do not call these functions directly: push an undo command, which calls them. ColoursDialog may call Replace(),
    // because it fills only its own copy of the notes.
    void Insert(int row, Note const& note);
    Note Take(int row);
    void Replace(std::vector<Note> notes);
    void SetColour(int row, QColor const& colour);

private:
    std::vector<Note> notes_;
};

/// \name Commands
/// Each function creates a command. Push the command onto an undo stack, which takes ownership of the command. \a notes
/// must outlive the command.
/// \{

/// Creates a command that appends \a note.
QUndoCommand* NewAddCommand(Notes* notes, Note const& note);
/// Creates a command that removes the note at \a row.
QUndoCommand* NewRemoveCommand(Notes* notes, int row);
/// Creates a command that sets the colour of the note at \a row.
QUndoCommand* NewColourCommand(Notes* notes, int row, QColor const& colour);
/// Creates a command that replaces all notes by \a others.
QUndoCommand* NewReplaceCommand(Notes* notes, std::vector<Note> const& others);
/// \}

} // namespace Gallery
} // namespace Zelkor
