#include "PlacementPage.h"

#include "StatusLabel.h"
#include "Widgets.h"

#include <Util/GlobalCoordinates.h>
#include <Util/SpontaneousDialog.h>
#include <Util/WindowUtils.h>

#include <QtCore/QEvent>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableWidget>

namespace Zelkor::Gallery
{
namespace
{

QString TextOf(QRect const& rect)
{
    return PlacementPage::tr("%1 × %2 at %3, %4").arg(rect.width()).arg(rect.height()).arg(rect.x()).arg(rect.y());
}

} // namespace

PlacementPage::PlacementPage(QWidget* parent)
    : Page(parent)
    , centreButton_(new QPushButton(tr("Dialog &Centred on This Window")))
    , parentButton_(new QPushButton(tr("Dialog with Automatic &Parent")))
    , screens_(new QTableWidget)
{
    SetUpTable(screens_, {tr("Screen"), tr("Geometry"), tr("Primary")});
    screens_->setAccessibleName(tr("Screens"));
    CreateLayout();
    connect(centreButton_, &QPushButton::clicked, this, [this] {
        auto const dialog = NewDialog();
        Util::ExecDialogInCenterWindow(dialog.get(), this);
    });
    connect(parentButton_, &QPushButton::clicked, this, [this] {
        auto* const dialog = NewDialog().release();
        dialog->setParent(Util::SpontaneousDialog::findParent(), dialog->windowFlags());
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->open();
        Update();
    });
    connect(qApp, &QGuiApplication::screenAdded, this, &PlacementPage::ListScreens);
    connect(qApp, &QGuiApplication::screenRemoved, this, &PlacementPage::ListScreens);
    ListScreens();
    setFocusProxy(centreButton_);
}

void PlacementPage::CreateLayout()
{
    auto* const buttons = new QHBoxLayout;
    buttons->setSpacing(Spacing);
    buttons->addWidget(centreButton_);
    buttons->addWidget(parentButton_);
    buttons->addStretch();
    auto* const form = new QFormLayout;
    globalLabel_ = AddValueRow(form, tr("This page on the desktop"));
    screenLabel_ = AddValueRow(form, tr("Screen that contains its centre"));
    centreLabel_ = AddValueRow(form, tr("Position when centred"));
    parentLabel_ = AddValueRow(form, tr("Automatic dialog parent"));
    auto* const column = new QVBoxLayout(this);
    SetUpPageLayout(column);
    column->addLayout(buttons);
    column->addLayout(form);
    column->addWidget(screens_, 1);
}

std::unique_ptr<QDialog> PlacementPage::NewDialog() const
{
    auto dialog = std::make_unique<QDialog>();
    dialog->setWindowTitle(tr("Placed"));
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, dialog.get(), &QDialog::reject);
    auto* const column = new QVBoxLayout(dialog.get());
    column->addWidget(new QLabel(tr("Move the window and open this dialog again.")));
    column->addWidget(buttons);
    return dialog;
}

void PlacementPage::ListScreens()
{
    screens_->setRowCount(0);
    for (QScreen const* const screen : QGuiApplication::screens()) {
        int const row = screens_->rowCount();
        screens_->insertRow(row);
        screens_->setItem(row, 0, NewCell(screen->name().isEmpty() ? tr("(unnamed)") : screen->name()));
        screens_->setItem(row, 1, NewCell(TextOf(screen->geometry())));
        screens_->setItem(row, 2, NewCell(screen == QGuiApplication::primaryScreen() ? tr("Yes") : tr("No")));
    }
}

void PlacementPage::Update()
{
    QPoint const centred = Util::GetWidgetPosOnCurrentScreenCenter(*this);
    QWidget const* const parent = Util::SpontaneousDialog::findParent();
    globalLabel_->Show(TextOf(Util::GetGlobalWidgetRect(this)));
    screenLabel_->Show(TextOf(Util::GetCurrentScreenRect(this)));
    centreLabel_->Show(tr("%1, %2").arg(centred.x()).arg(centred.y()));
    parentLabel_->Show(parent ? parent->windowTitle() : tr("none"));
}

void PlacementPage::showEvent(QShowEvent* event)
{
    Page::showEvent(event);
    window()->installEventFilter(this);
    Update();
}

bool PlacementPage::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::ActivationChange:
        Update();
        break;
    default:
        break;
    }
    return Page::eventFilter(watched, event);
}

void PlacementPage::ShowSample()
{
    Update();
    ScheduleSampleShown();
}

std::vector<SampleDialog> PlacementPage::SampleDialogs()
{
    std::vector<SampleDialog> dialogs;
    dialogs.push_back({"placed", NewDialog()});
    return dialogs;
}

} // namespace Zelkor::Gallery
