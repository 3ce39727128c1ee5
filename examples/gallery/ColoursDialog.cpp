#include "ColoursDialog.h"

#include "Widgets.h"

#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QListView>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QVBoxLayout>

namespace Zelkor::Gallery
{
namespace
{

constexpr QRgb Colours[] = {0xffd2543c, 0xfff2a33a, 0xff3aa76d, 0xff2f6fc4, 0xff7a5cc7};
constexpr int SwatchSize = 20;

QIcon Swatch(QColor const& colour)
{
    QPixmap pixmap(SwatchSize, SwatchSize);
    pixmap.fill(colour);
    return QIcon(pixmap);
}

} // namespace

ColoursDialog::ColoursDialog(std::vector<Note> const& notes, QAction* undo, QAction* redo, QWidget* parent)
    : QDialog(parent)
    , view_(new QListView)
{
    setWindowTitle(tr("Colours"));
    notes_.Replace(notes);
    view_->setAccessibleName(tr("Notes"));
    view_->setModel(&notes_);
    view_->setCurrentIndex(notes_.index(0));

    auto* const tools = new QHBoxLayout;
    for (QRgb const colour : Colours) {
        auto* const button = new QToolButton;
        button->setIcon(Swatch(colour));
        button->setAccessibleName(QColor(colour).name());
        connect(button, &QToolButton::clicked, this, [this, colour] { SetColourOfSelected(colour); });
        tools->addWidget(button);
    }
    tools->addStretch();
    tools->addWidget(NewActionButton(undo));
    tools->addWidget(NewActionButton(redo));

    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* const column = new QVBoxLayout(this);
    column->setSpacing(Spacing);
    column->addLayout(tools);
    column->addWidget(view_);
    column->addWidget(buttons);
}

void ColoursDialog::SetColourOfSelected(QColor const& colour)
{
    if (view_->currentIndex().isValid()) {
        commands_.push(NewColourCommand(&notes_, view_->currentIndex().row(), colour));
    }
}

} // namespace Zelkor::Gallery
