#include "UndoPage.h"

#include "ColoursDialog.h"
#include "StatusLabel.h"
#include "Timeline.h"
#include "Widgets.h"

#include <QtCore/QPointer>
#include <QtWidgets/QAction>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QListView>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QToolButton>

namespace Zelkor::Gallery
{
namespace
{

constexpr QRgb NewNoteColour = 0xff8a8f98;
constexpr QRgb SampleColour = 0xff3aa76d;
constexpr int SampleNotes = 4;

} // namespace

UndoPage::UndoPage(QWidget* parent)
    : Page(parent)
    , undo_(new QAction(tr("Undo"), this))
    , redo_(new QAction(tr("Redo"), this))
    , view_(new QListView)
    , addButton_(new QPushButton(tr("&Add Note")))
    , removeButton_(new QPushButton(tr("R&emove Note")))
    , coloursButton_(new QPushButton(tr("&Colours…")))
    , timeline_(new Timeline)
{
    undo_->setShortcut(QKeySequence::Undo);
    redo_->setShortcut(QKeySequence::Redo);
    view_->setAccessibleName(tr("Notes"));
    view_->setModel(&notes_);

    auto* const form = new QFormLayout;
    activeLabel_ = AddValueRow(form, tr("Undo and Redo act on"));
    auto* const lists = new QHBoxLayout;
    lists->setSpacing(Spacing);
    lists->addWidget(view_, 1);
    lists->addWidget(timeline_, 1);
    auto* const column = new QVBoxLayout(this);
    SetUpPageLayout(column);
    column->addLayout(NewTools());
    column->addLayout(form);
    column->addLayout(lists, 1);

    Connect();
    handlers_.push(&document_);
    Update();
    setFocusProxy(addButton_);
}

QHBoxLayout* UndoPage::NewTools()
{
    auto* const row = new QHBoxLayout;
    row->setSpacing(Spacing);
    row->addWidget(addButton_);
    row->addWidget(removeButton_);
    row->addWidget(coloursButton_);
    row->addStretch();
    row->addWidget(NewActionButton(undo_));
    row->addWidget(NewActionButton(redo_));
    return row;
}

void UndoPage::Connect()
{
    using Util::UndoHandlerStack;
    connect(undo_, &QAction::triggered, &handlers_, &UndoHandlerStack::undo);
    connect(redo_, &QAction::triggered, &handlers_, &UndoHandlerStack::redo);
    connect(&handlers_, &UndoHandlerStack::canUndoChanged, undo_, &QAction::setEnabled);
    connect(&handlers_, &UndoHandlerStack::canRedoChanged, redo_, &QAction::setEnabled);
    auto const yesOrNo = [](bool is) { return QLatin1String(is ? "true" : "false"); };
    auto const watch = [this, yesOrNo](auto signal, char const* name) {
        connect(&handlers_, signal, this, [this, yesOrNo, name](bool is) {
            timeline_->Add(activeLabel_->text(), QStringLiteral("%1(%2)").arg(QLatin1String(name), yesOrNo(is)));
        });
    };
    connect(&handlers_, &UndoHandlerStack::indexChanged, this, &UndoPage::Update);
    connect(&handlers_, &UndoHandlerStack::indexChanged, this,
            [this](int index) { timeline_->Add(activeLabel_->text(), QStringLiteral("indexChanged(%1)").arg(index)); });
    watch(&UndoHandlerStack::canUndoChanged, "canUndoChanged");
    watch(&UndoHandlerStack::canRedoChanged, "canRedoChanged");
    watch(&UndoHandlerStack::cleanChanged, "cleanChanged");
    connect(addButton_, &QPushButton::clicked, this, &UndoPage::AddNote);
    connect(removeButton_, &QPushButton::clicked, this, &UndoPage::RemoveNote);
    connect(coloursButton_, &QPushButton::clicked, this, &UndoPage::EditColours);
}

void UndoPage::AddNote()
{
    document_.push(NewAddCommand(&notes_, {tr("Note %1").arg(notes_.rowCount() + 1), NewNoteColour}));
    view_->setCurrentIndex(notes_.index(notes_.rowCount() - 1));
}

void UndoPage::RemoveNote()
{
    if (view_->currentIndex().isValid()) {
        document_.push(NewRemoveCommand(&notes_, view_->currentIndex().row()));
    }
}

std::unique_ptr<ColoursDialog> UndoPage::NewDialog()
{
    return std::make_unique<ColoursDialog>(notes_.All(), undo_, redo_, this);
}

void UndoPage::EditColours()
{
    QPointer<UndoPage> const alive(this);
    QPointer<ColoursDialog> const dialog = NewDialog().release();
    handlers_.push(dialog->Commands());
    bool const isAccepted = dialog->exec() == QDialog::Accepted;
    if (!alive) {
        return; // The main window was destroyed while the dialog was open. This page has been destroyed too.
    }
    handlers_.pop();
    Update();
    if (isAccepted && dialog && dialog->Commands()->index() > 0) {
        document_.push(NewReplaceCommand(&notes_, dialog->ColouredNotes()));
    }
    delete dialog;
}

void UndoPage::Update()
{
    activeLabel_->Show(handlers_.activeStack() == &document_ ? tr("Notes") : tr("Colours"));
    undo_->setEnabled(handlers_.canUndo());
    redo_->setEnabled(handlers_.canRedo());
    removeButton_->setEnabled(notes_.rowCount() > 0);
    coloursButton_->setEnabled(notes_.rowCount() > 0);
}

void UndoPage::ShowSample()
{
    for (int i = 0; i < SampleNotes; ++i) {
        AddNote();
    }
    document_.push(NewColourCommand(&notes_, 1, SampleColour));
    handlers_.undo();
    handlers_.redo();
    handlers_.undo();
    ScheduleSampleShown();
}

std::vector<SampleDialog> UndoPage::SampleDialogs()
{
    std::vector<SampleDialog> dialogs;
    auto dialog = NewDialog();
    dialog->SetColourOfSelected(SampleColour);
    dialogs.push_back({"colours", std::move(dialog)});
    return dialogs;
}

} // namespace Zelkor::Gallery
