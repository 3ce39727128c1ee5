#include <Util/FixWidgetStyle.h>

#include <WidgetKit/WidgetUtils.h>

#include <QtCore/QVariant>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QWidget>

namespace Zelkor::Util
{

namespace
{

constexpr char RoundedEdgesProperty[] = "roundedEdges";

struct StandardButtonLook
{
    QDialogButtonBox::StandardButton button;
    char const* objectName;
    char const* styleHint; // null: do not set the property "styleHint"
};

constexpr StandardButtonLook StandardButtonLooks[] = {
    {QDialogButtonBox::Ok, "okButton", "activeButton"},
    {QDialogButtonBox::Cancel, "cancelButton", nullptr},
    {QDialogButtonBox::Close, "closeButton", nullptr},
    {QDialogButtonBox::Yes, "yesButton", nullptr},
    {QDialogButtonBox::No, "noButton", nullptr},
    {QDialogButtonBox::RestoreDefaults, "restoreButton", "highlightedButton"},
};

/// Returns all descendants of \a root that have type \a T. If \a root itself has type \a T, it is the last element.
template <class T>
QList<T*> FindWithRoot(QWidget* root)
{
    QList<T*> found = root->findChildren<T*>();
    if (T* const self = qobject_cast<T*>(root)) {
        found.append(self);
    }
    return found;
}

QWidgetList PopUpsOf(QWidget* root)
{
    QWidgetList popUps;
    for (QMenu* const menu : FindWithRoot<QMenu>(root)) {
        popUps.append(menu);
    }
    for (QComboBox* const comboBox : FindWithRoot<QComboBox>(root)) {
        popUps.append(comboBox->view()->window()); // the pop-up window that contains the list of the combo box
    }
    return popUps;
}

void SetUpRoundedEdges(QWidget* widget)
{
    if (!widget->property(RoundedEdgesProperty).toBool()) {
        return;
    }
    widget->setAttribute(Qt::WA_TranslucentBackground);
    widget->setWindowFlags(widget->windowFlags() | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint);
}

void NameAction(QMenu* menu)
{
    QAction* const action = menu->menuAction();
    if (action && action->objectName().isEmpty()) {
        action->setObjectName(QLatin1String("action_") + menu->objectName());
    }
    Widget::Util::repolishWidget(menu);
}

void FixButtons(QDialogButtonBox* box)
{
    Widget::Util::installLayoutController(box);
    for (auto const& look : StandardButtonLooks) {
        QPushButton* const button = box->button(look.button);
        if (!button) {
            continue;
        }
        if (button->objectName().isEmpty()) {
            button->setObjectName(QLatin1String(look.objectName));
        }
        if (look.styleHint) {
            Widget::Util::applyStyleHint(button, QLatin1String(look.styleHint));
        }
    }
    auto const buttons = box->buttons();
    for (QAbstractButton* const button : buttons) {
        Widget::Util::repolishWidget(button);
    }
}

} // namespace

void FixWidgetStyle::Apply(QWidget* root)
{
    if (!root) {
        return;
    }
    for (QWidget* const popUp : PopUpsOf(root)) {
        popUp->setProperty(RoundedEdgesProperty, true);
    }

    SetUpRoundedEdges(root);
    auto const widgets = root->findChildren<QWidget*>();
    for (QWidget* const widget : widgets) {
        SetUpRoundedEdges(widget);
    }

    root->setWindowFlags(root->windowFlags() & ~Qt::WindowContextHelpButtonHint);

    // findChildren() excludes root. This is deliberate: if root is a menu, the name of its action must not change.
    auto const menus = root->findChildren<QMenu*>();
    for (QMenu* const menu : menus) {
        NameAction(menu);
    }
    auto const boxes = root->findChildren<QDialogButtonBox*>();
    for (QDialogButtonBox* const box : boxes) {
        FixButtons(box);
    }
}

} // namespace Zelkor::Util
