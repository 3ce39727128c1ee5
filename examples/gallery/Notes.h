#pragma once

/// \file
/// The document of the page Undo.

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

/// Coloured notes, shown by views with their colour as the decoration. They are changed by the commands below.
class Notes : public QAbstractListModel
{
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    int rowCount(QModelIndex const& parent = QModelIndex()) const override;
    QVariant data(QModelIndex const& index, int role) const override;

    std::vector<Note> const& All() const { return notes_; }

    void Insert(int row, Note const& note);
    Note Take(int row);
    void Replace(std::vector<Note> notes);
    void Colour(int row, QColor const& colour);

private:
    std::vector<Note> notes_;
};

/// Commands on \a notes, which outlives them; for an undo stack, which owns them.
QUndoCommand* NewAddCommand(Notes* notes, Note const& note);
QUndoCommand* NewRemoveCommand(Notes* notes, int row);
QUndoCommand* NewColourCommand(Notes* notes, int row, QColor const& colour);
/// Puts \a others in the place of all notes.
QUndoCommand* NewReplaceCommand(Notes* notes, std::vector<Note> const& others);

} // namespace Gallery
} // namespace Zelkor
