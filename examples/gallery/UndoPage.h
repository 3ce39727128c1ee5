#pragma once

/// \file
/// The Undo page: an editor for notes, and a dialog with its own undo stack.

#include "Notes.h"
#include "Page.h"

#include <Util/UndoHandlerStack.h>

#include <QtWidgets/QUndoStack>

QT_BEGIN_NAMESPACE
class QAction;
class QHBoxLayout;
class QListView;
class QPushButton;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Gallery
{

class ColoursDialog;
class StatusLabel;
class Timeline;

class UndoPage : public Page
{
    Q_OBJECT

public:
    explicit UndoPage(QWidget* parent = nullptr);

    void ShowSample() override;
    std::vector<SampleDialog> SampleDialogs() override;

private:
    QHBoxLayout* NewTools();
    void Connect();
    void AddNote();
    void RemoveNote();
    void EditColours();
    std::unique_ptr<ColoursDialog> NewDialog();
    void Update();

    Notes notes_;
    QUndoStack document_; // declared after notes_, because the commands refer to notes_
    Util::UndoHandlerStack handlers_;
    QAction* undo_;
    QAction* redo_;
    QListView* view_;
    QPushButton* addButton_;
    QPushButton* removeButton_;
    QPushButton* coloursButton_;
    StatusLabel* activeLabel_;
    Timeline* timeline_;
};

} // namespace Gallery
} // namespace Zelkor
