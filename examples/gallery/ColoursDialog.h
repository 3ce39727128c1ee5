#pragma once

/// \file
/// A dialog with an undo stack of its own.

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

/// Colours a copy of notes. Each colour is a step on the dialog's own undo stack.
class ColoursDialog : public QDialog
{
    Q_OBJECT

public:
    /// \a undo and \a redo are the application's.
    ColoursDialog(std::vector<Note> const& notes, QAction* undo, QAction* redo, QWidget* parent = nullptr);

    QUndoStack* Commands() { return &commands_; }
    std::vector<Note> const& Coloured() const { return notes_.All(); }

    /// Colours the note that is selected.
    void ColourSelected(QColor const& colour);

private:
    Notes notes_;
    QUndoStack commands_; // ends before what its commands work on
    QListView* view_;
};

} // namespace Gallery
} // namespace Zelkor
