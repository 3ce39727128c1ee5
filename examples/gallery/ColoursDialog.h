#pragma once

/// \file
/// A dialog that changes the colours of notes and has its own undo stack.

#include "Notes.h"

#include <QtWidgets/QDialog>
#include <QtWidgets/QUndoStack>

QT_BEGIN_NAMESPACE
class QAction;
class QListView;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Gallery
{

/// A dialog in which the user changes the colours of a copy of the notes. Each change is a command on the dialog's own
/// undo stack.
class ColoursDialog : public QDialog
{
    Q_OBJECT

public:
    /// Creates a dialog for a copy of \a notes. The undo and redo buttons of the dialog trigger the actions \a undo and
    /// \a redo. Does not take ownership of the actions.
    ColoursDialog(std::vector<Note> const& notes, QAction* undo, QAction* redo, QWidget* parent = nullptr);

    QUndoStack* Commands() { return &commands_; }

    /// Returns the notes with the colours chosen so far.
    std::vector<Note> const& ColouredNotes() const { return notes_.All(); }

    /// Sets the colour of the selected note.
    void SetColourOfSelected(QColor const& colour);

private:
    Notes notes_;
    QUndoStack commands_; // declared after notes_, because the commands refer to notes_
    QListView* view_;
};

} // namespace Gallery
} // namespace Zelkor
