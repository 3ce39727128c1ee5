#include <Util/AlertBox.h>

#include <Util/StyleUtils.h>
#include <WidgetKit/WidgetUtils.h>

#include <QtCore/QMap>
#include <QtCore/QScopeGuard>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QStyle>

#include <iterator>

// Design notes
//
// Style sheets select widgets by their object names and dynamic properties. Qt does not evaluate the selectors again
// when a property changes, so AlertBox calls unpolish() and polish() after every change of a property.
//
// An empty spacer widget in the last row of the grid layout enforces the minimum width. Whenever the contents of the
// box change, QMessageBox deletes the layout and creates a new one. AlertBox then inserts the spacer into the new
// layout. This happens in a queued call, because the new layout does not exist yet when the old layout emits
// destroyed().

namespace Zelkor::Util
{

namespace
{

constexpr int QuestionWidth = 300;

struct LevelLook
{
    char const* title; // null if the level has no default title
    char const* icon;
    MessageLevel messageLevel;
};

constexpr LevelLook LevelLooks[] = {
    {QT_TRANSLATE_NOOP("Zelkor::Util::AlertBox", "Information"), ":/MessageBox/info_icon.png",
     MessageLevel::Information},
    {QT_TRANSLATE_NOOP("Zelkor::Util::AlertBox", "Error"), ":/MessageBox/error_icon.png", MessageLevel::Error},
    {nullptr, ":/MessageBox/question_icon.png", MessageLevel::Question},
};

/// Returns the element of LevelLooks for \a level. Returns null if \a level is outside the enumeration.
LevelLook const* LookOf(AlertBox::Level level)
{
    auto const index = static_cast<std::size_t>(level);
    return index < std::size(LevelLooks) ? &LevelLooks[index] : nullptr;
}

QString StandardButtonName(QMessageBox::StandardButton button)
{
    static QMap<QMessageBox::StandardButton, QString> const names = {
        {QMessageBox::Ok, QStringLiteral("Ok")},
        {QMessageBox::Save, QStringLiteral("Save")},
        {QMessageBox::SaveAll, QStringLiteral("SaveAll")},
        {QMessageBox::Open, QStringLiteral("Open")},
        {QMessageBox::Yes, QStringLiteral("Yes")},
        {QMessageBox::YesToAll, QStringLiteral("YesToAll")},
        {QMessageBox::No, QStringLiteral("No")},
        {QMessageBox::NoToAll, QStringLiteral("NoToAll")},
        {QMessageBox::Abort, QStringLiteral("Abort")},
        {QMessageBox::Retry, QStringLiteral("Retry")},
        {QMessageBox::Ignore, QStringLiteral("Ignore")},
        {QMessageBox::Close, QStringLiteral("Close")},
        {QMessageBox::Cancel, QStringLiteral("Cancel")},
        {QMessageBox::Discard, QStringLiteral("Discard")},
        {QMessageBox::Help, QStringLiteral("Help")},
        {QMessageBox::Apply, QStringLiteral("Apply")},
        {QMessageBox::Reset, QStringLiteral("Reset")},
        {QMessageBox::RestoreDefaults, QStringLiteral("RestoreDefaults")},
    };
    return names.value(button, QStringLiteral("Unknown"));
}

QString ButtonRoleName(QMessageBox::ButtonRole role)
{
    static QMap<QMessageBox::ButtonRole, QString> const names = {
        {QMessageBox::InvalidRole, QStringLiteral("Invalid")},
        {QMessageBox::AcceptRole, QStringLiteral("Accept")},
        {QMessageBox::RejectRole, QStringLiteral("Reject")},
        {QMessageBox::DestructiveRole, QStringLiteral("Destructive")},
        {QMessageBox::ActionRole, QStringLiteral("Action")},
        {QMessageBox::HelpRole, QStringLiteral("Help")},
        {QMessageBox::YesRole, QStringLiteral("Yes")},
        {QMessageBox::NoRole, QStringLiteral("No")},
        {QMessageBox::ResetRole, QStringLiteral("Reset")},
        {QMessageBox::ApplyRole, QStringLiteral("Apply")},
    };
    return names.value(role, QStringLiteral("Unknown"));
}

void ApplyStyleAgain(QStyle* style, QWidget* widget)
{
    style->unpolish(widget);
    style->polish(widget);
}

} // namespace

AlertBox::AlertBox() = default;

AlertBox::AlertBox(Level level, QString const& title, QString const& text, QMessageBox::StandardButtons buttons,
                   QWidget* parent, Qt::WindowFlags flags)
    : QMessageBox(NoIcon, title, text, buttons, parent, flags)
    , level_(level)
{
    SetDefaultButtonNames();

    QString shownTitle = title;
    if (shownTitle.isEmpty()) {
        LevelLook const* const look = LookOf(level_);
        if (look && look->title) {
            shownTitle = tr(look->title);
        } else if (level_ == Question) { // deliberate: only a question without a title gets a minimum width
            SetWidth(QuestionWidth);
        }
        // Kept for compatibility with the first release: QMessageBox::setWindowTitle() is called only if the parameter
        // `title` is empty.
        QMessageBox::setWindowTitle(shownTitle);
    }
    QWidget::setWindowTitle(shownTitle); // required, because QMessageBox::setWindowTitle() has no effect on macOS

    setStyleSheet(QStringLiteral("QLabel#qt_msgbox_label { font : normal }"));
    SetDialogSubStyle(level_);

    Widget::Util::installLayoutController(this);
    if (auto* const buttonBox = findChild<QDialogButtonBox*>()) {
        Widget::Util::installLayoutController(buttonBox);
    }
}

AlertBox::~AlertBox() = default;

int AlertBox::Exec(Level level, QString const& title, QString const& text, QMessageBox::StandardButtons buttons,
                   QWidget* parent, Qt::WindowFlags flags)
{
    // Allocate the box on the heap: if its parent is destroyed while the box is shown, the parent deletes the box.
    QPointer<AlertBox> const box(new AlertBox(level, title, text, buttons, parent, flags));
    auto const boxGuard = qScopeGuard([&box] { delete box.data(); });
    box->PrepareToShow();
    return box->QDialog::exec();
}

int AlertBox::Exec()
{
    PrepareToShow();
    return QDialog::exec();
}

void AlertBox::Show(bool modal)
{
    PrepareToShow();
    setModal(modal);
    show();
}

void AlertBox::PrepareToShow()
{
    SetButtonsSubStyle();
    UpdateDefaultIcon();
    Repolish();
}

void AlertBox::SetWidth(int width)
{
    disconnect(widthConnection_);
    if (width < 0) {
        if (widthSpacer_) {
            widthSpacer_->setFixedSize(0, 0);
            widthSpacer_->deleteLater();
            isWidthSpacerDeletionPending_ = true;
        }
        return;
    }
    auto* const grid = qobject_cast<QGridLayout*>(layout());
    if (!grid) {
        return;
    }
    if (isWidthSpacerDeletionPending_) {
        delete widthSpacer_;
        isWidthSpacerDeletionPending_ = false;
    }
    if (!widthSpacer_) {
        widthSpacer_ = Widget::Util::createSpacer(this, QStringLiteral("widthSpacer"));
    }
    widthSpacer_->setFixedSize(width, 0);
    grid->addWidget(widthSpacer_, grid->rowCount() - 1, 0, 1, grid->columnCount());
    // The connection is queued, because QMessageBox deletes the old layout before it installs the new layout.
    // disconnect() does not cancel a queued call. Therefore, the lambda checks that SetWidth() has not removed the
    // minimum width in the meantime.
    widthConnection_ = connect(
        grid, &QObject::destroyed, this,
        [this] {
            if (!isWidthSpacerDeletionPending_) {
                SetWidth(GetWidth());
            }
        },
        Qt::QueuedConnection);
}

int AlertBox::GetWidth() const
{
    return widthSpacer_ ? widthSpacer_->width() : -1;
}

void AlertBox::SetSpacing(int spacing)
{
    auto const all = buttons();
    if (all.isEmpty()) {
        return;
    }
    if (auto* const row = qobject_cast<QHBoxLayout*>(all.first()->parentWidget()->layout())) {
        row->setSpacing(spacing);
        buttonSpacing_ = spacing;
    }
}

int AlertBox::GetSpacing() const
{
    return buttonSpacing_;
}

void AlertBox::SetUseDefaultLevelIcon(bool use)
{
    useDefaultLevelIcon_ = use;
}

bool AlertBox::GetUseDefaultLevelIcon() const
{
    return useDefaultLevelIcon_;
}

void AlertBox::SetLearnMoreLink(QString const& link)
{
    setInformativeText(link);
}

void AlertBox::SetLinksOpener(std::shared_ptr<App::ILinksOpener> const& opener)
{
    auto const openLink = [opener](QString const& link) { opener->OpenLink(link); };
    auto const labels = findChildren<QLabel*>();
    for (QLabel* const label : labels) {
        label->setOpenExternalLinks(!opener);
        disconnect(label, &QLabel::linkActivated, nullptr, nullptr);
        if (opener) {
            connect(label, &QLabel::linkActivated, label, openLink, Qt::DirectConnection);
        }
    }
}

void AlertBox::SetDefaultButtonNames()
{
    auto const all = buttons();
    for (QAbstractButton* const button : all) {
        button->setObjectName(QStringLiteral("button%1").arg(StandardButtonName(standardButton(button))));
    }
}

void AlertBox::SetButtonsSubStyle()
{
    auto const all = buttons();
    for (QAbstractButton* const button : all) {
        auto const apply = [button](char const* value, char const* property) {
            ApplyWidgetStyle(button, QString::fromLatin1(value), property);
        };
        StandardButton const standard = standardButton(button);
        ButtonRole const role = buttonRole(button);

        // A Cancel button with AcceptRole meets both the condition for Ok and the condition for Cancel. The values for
        // Cancel then overwrite the values for Ok.
        if (standard == Ok || role == AcceptRole) {
            apply("Ok", "SubStyle");
            apply("activeButton", "styleHint");
        } else if (standard == Yes || role == YesRole) {
            apply("Yes", "SubStyle");
            apply("activeButton", "styleHint");
        }
        if (standard == Cancel || role == RejectRole) {
            apply("Cancel", "SubStyle");
            apply("rejectButton", "styleHint");
        }
        if (standard == No) {
            apply("rejectButton", "styleHint");
        }
        ApplyWidgetStyle(button, ButtonRoleName(role), "buttonRole");
    }
}

void AlertBox::SetDialogSubStyle(Level level)
{
    if (LevelLook const* const look = LookOf(level)) {
        ApplyMessageLevel(this, look->messageLevel);
    }
}

void AlertBox::UpdateDefaultIcon()
{
    bool const hasIcon = !iconPixmap().isNull() || icon() != NoIcon;
    if (useDefaultLevelIcon_ && !hasIcon) {
        setIconPixmap(GetPixmapForLevel(level_));
    }
}

void AlertBox::Repolish()
{
    // Deliberately use the style of the box for all descendants, even for descendants that have their own style.
    QStyle* const boxStyle = style();
    ApplyStyleAgain(boxStyle, this);
    auto const widgets = findChildren<QWidget*>();
    for (QWidget* const widget : widgets) {
        ApplyStyleAgain(boxStyle, widget);
    }
}

QPixmap AlertBox::GetPixmapForLevel(Level level)
{
    LevelLook const* const look = LookOf(level);
    return look ? QPixmap(QLatin1String(look->icon), "PNG", Qt::AutoColor) : QPixmap();
}

} // namespace Zelkor::Util
