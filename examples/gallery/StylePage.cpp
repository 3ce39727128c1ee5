#include "StylePage.h"

#include "Widgets.h"

#include <Util/FixWidgetStyle.h>
#include <Util/StyleUtils.h>
#include <Util/StyledPalette.h>

#include <QtCore/QMetaEnum>
#include <QtWidgets/QColorDialog>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QToolButton>

namespace Zelkor::Gallery
{
namespace
{

using Util::MessageLevel;

/// Creates a dialog and applies FixWidgetStyle to it. The dialog contains the kinds of widgets that FixWidgetStyle
/// changes.
std::unique_ptr<QDialog> NewSettingsDialog(QWidget* parent)
{
    auto dialog = std::make_unique<QDialog>(parent);
    dialog->setWindowTitle(StylePage::tr("Settings"));
    auto* const quality = new QComboBox;
    quality->addItems({StylePage::tr("Draft"), StylePage::tr("Good"), StylePage::tr("Best")});
    auto* const form = new QFormLayout;
    form->addRow(NewLabelFor(quality, StylePage::tr("&Quality")), quality);
    auto* const buttons =
        new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::RestoreDefaults);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog.get(), &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog.get(), &QDialog::reject);
    auto* const column = new QVBoxLayout(dialog.get());
    column->addLayout(form);
    column->addStretch();
    column->addWidget(buttons);
    Util::FixWidgetStyle::Apply(dialog.get());
    return dialog;
}

} // namespace

StylePage::StylePage(QWidget* parent)
    : Page(parent)
    , palette_(new Util::StyledPalette(this))
{
    palette_->hide();
    auto* const row = new QHBoxLayout;
    row->setSpacing(Spacing);
    row->addWidget(NewPopUps(), 1);
    row->addWidget(NewColours(), 1);
    auto* const column = new QVBoxLayout(this);
    SetUpPageLayout(column);
    column->addWidget(NewMessages());
    column->addLayout(row);
    column->addStretch();
    setFocusProxy(levelBox_);
}

QGroupBox* StylePage::NewMessages()
{
    auto* const box = new QGroupBox(tr("Message levels"));
    levelBox_ = new QComboBox;
    auto const levels = QMetaEnum::fromType<MessageLevel>();
    for (int i = 0; i < levels.keyCount(); ++i) {
        levelBox_->addItem(QString::fromLatin1(levels.key(i)), levels.value(i));
    }
    message_ = new QLabel(tr("The style sheet sets its appearance by the property “Level”."));

    auto* const form = new QFormLayout;
    form->addRow(NewLabelFor(levelBox_, tr("&Level")), levelBox_);
    auto* const column = new QVBoxLayout(box);
    column->setSpacing(Spacing);
    column->addLayout(form);
    column->addWidget(message_);
    for (int i = 0; i < levels.keyCount() - 1; ++i) {
        auto* const label = new QLabel(tr("A message of the level %1").arg(QLatin1String(levels.key(i))));
        Util::ApplyMessageLevel(label, static_cast<MessageLevel>(levels.value(i)));
        column->addWidget(label);
    }
    connect(levelBox_, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [this] { Util::ApplyMessageLevel(message_, static_cast<MessageLevel>(levelBox_->currentData().toInt())); });
    levelBox_->setCurrentIndex(levelBox_->findData(static_cast<int>(MessageLevel::NoMessage)));
    return box;
}

QGroupBox* StylePage::NewPopUps()
{
    auto* const box = new QGroupBox(tr("Rounded pop-ups and named buttons"));
    auto* const menuButton = new QPushButton(tr("&Menu"));
    menu_ = new QMenu(menuButton);
    menu_->setObjectName(QStringLiteral("sample"));
    menu_->addAction(tr("Cut"));
    menu_->addAction(tr("Copy"));
    menu_->addAction(tr("Paste"));
    menuButton->setMenu(menu_);
    Util::FixWidgetStyle::Apply(menu_);

    auto* const dialogButton = new QPushButton(tr("&Settings…"));
    connect(dialogButton, &QPushButton::clicked, this, [this] {
        auto* const dialog = NewSettingsDialog(window()).release();
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->open();
    });
    auto* const row = new QHBoxLayout(box);
    row->setSpacing(Spacing);
    row->addWidget(menuButton);
    row->addWidget(dialogButton);
    row->addStretch();
    return box;
}

QToolButton* StylePage::NewColourButton(char const* property, QString const& title)
{
    auto* const button = new QToolButton;
    button->setText(tr("Choose…"));
    button->setAccessibleName(title);
    connect(button, &QToolButton::clicked, this, [this, property, title] {
        QColor const colour = QColorDialog::getColor(palette_->property(property).value<QColor>(), this, title);
        if (colour.isValid()) {
            palette_->setProperty(property, colour);
        }
    });
    return button;
}

QGroupBox* StylePage::NewColours()
{
    auto* const box = new QGroupBox(tr("Colours of the palette"));
    auto* const link = new QLabel(tr("Links are <a href=\"#\">in the link colour</a>."));
    auto* const form = new QFormLayout(box);
    form->addRow(tr("Links:"), NewColourButton("linksColor", tr("Colour of links")));
    form->addRow(tr("Light:"), NewColourButton("paletteLight", tr("Light colour of bevels")));
    form->addRow(link);
    return box;
}

void StylePage::ShowSample()
{
    levelBox_->setCurrentIndex(levelBox_->findData(static_cast<int>(MessageLevel::Warning)));
    ScheduleSampleShown();
}

std::vector<SampleDialog> StylePage::SampleDialogs()
{
    std::vector<SampleDialog> dialogs;
    dialogs.push_back({"settings", NewSettingsDialog(window())});
    return dialogs;
}

} // namespace Zelkor::Gallery
