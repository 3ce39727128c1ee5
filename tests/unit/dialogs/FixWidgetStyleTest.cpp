#include <support/TestCase.h>
#include <support/displays/LayoutRequests.h>
#include <support/displays/RecordingStyle.h>
#include <support/displays/Screens.h>

#include <Util/FixWidgetStyle.h>

#include <QtTest/QtTest>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialog>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLayout>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QPushButton>

#include <memory>
#include <type_traits>

using Zelkor::Testing::RecordingStyle;
using Zelkor::Testing::Repolishing;
using Zelkor::Testing::RequestsLayoutForNewChild;
using Zelkor::Util::FixWidgetStyle;

static_assert(std::is_class_v<FixWidgetStyle> && !std::is_default_constructible_v<FixWidgetStyle>);
static_assert(!std::is_polymorphic_v<FixWidgetStyle> && std::is_empty_v<FixWidgetStyle>);
static_assert(std::is_same_v<decltype(&FixWidgetStyle::Apply), void (*)(QWidget*)>);

Q_DECLARE_METATYPE(QDialogButtonBox::StandardButton)

namespace
{

/// Records all objects whose property "roundedEdges" changes, in the order of the changes.
class RoundedEdgesOrder : public QObject
{
public:
    RoundedEdgesOrder() { qApp->installEventFilter(this); }

    QObjectList objects;

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::DynamicPropertyChange &&
            static_cast<QDynamicPropertyChangeEvent*>(event)->propertyName() == "roundedEdges") {
            objects += watched;
        }
        return false;
    }
};

bool HasRoundedEdgesProperty(QWidget const& widget)
{
    return widget.property("roundedEdges") == QVariant(true);
}

bool IsRounded(QWidget const& widget)
{
    return widget.testAttribute(Qt::WA_TranslucentBackground) &&
           widget.windowFlags().testFlag(Qt::FramelessWindowHint) &&
           widget.windowFlags().testFlag(Qt::NoDropShadowWindowHint);
}

bool IsSquare(QWidget const& widget)
{
    return !widget.testAttribute(Qt::WA_TranslucentBackground) &&
           !widget.windowFlags().testFlag(Qt::FramelessWindowHint) &&
           !widget.windowFlags().testFlag(Qt::NoDropShadowWindowHint);
}

QWidget* FindPopUp(QComboBox const& comboBox)
{
    return comboBox.view()->window();
}

QMenu* AddMenu(QWidget* parent, QString const& name)
{
    auto* const menu = new QMenu(parent);
    menu->setObjectName(name);
    return menu;
}

} // namespace

class FixWidgetStyleTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void ignoresNull() { FixWidgetStyle::Apply(nullptr); }

    void doesNotChangePlainWidgets()
    {
        QWidget window;
        QLabel label(&window);
        Qt::WindowFlags const windowFlags = window.windowFlags();
        Qt::WindowFlags const labelFlags = label.windowFlags();
        FixWidgetStyle::Apply(&window);
        for (QWidget const* const widget : {static_cast<QWidget*>(&window), static_cast<QWidget*>(&label)}) {
            QVERIFY(!widget->property("roundedEdges").isValid());
            QVERIFY(widget->dynamicPropertyNames().isEmpty());
            QCOMPARE(widget->objectName(), QString());
            QVERIFY(IsSquare(*widget));
        }
        QCOMPARE(window.windowFlags(), windowFlags);
        QCOMPARE(label.windowFlags(), labelFlags);
    }

    void roundsAllMenusOfAWindow()
    {
        QMainWindow window;
        QMenu* const file = window.menuBar()->addMenu(QStringLiteral("File"));
        QMenu* const recent = file->addMenu(QStringLiteral("Recent"));
        QMenu* const context = AddMenu(&window, QStringLiteral("context"));
        FixWidgetStyle::Apply(&window);
        for (QMenu const* const menu : {file, recent, context}) {
            QVERIFY(HasRoundedEdgesProperty(*menu));
            QVERIFY(IsRounded(*menu));
            QCOMPARE(menu->windowType(), Qt::Popup);
        }
        QVERIFY(!HasRoundedEdgesProperty(*window.menuBar()));
        QVERIFY(IsSquare(*window.menuBar()));
        QVERIFY(IsSquare(window));
    }

    void roundsAMenuThatIsTheRoot()
    {
        QMenu menu;
        QMenu* const subMenu = menu.addMenu(QStringLiteral("more"));
        FixWidgetStyle::Apply(&menu);
        QVERIFY(HasRoundedEdgesProperty(menu) && IsRounded(menu));
        QVERIFY(HasRoundedEdgesProperty(*subMenu) && IsRounded(*subMenu));
    }

    void doesNotChangeMenusOutsideTheRoot()
    {
        QWidget window;
        QMenu const other;
        FixWidgetStyle::Apply(&window);
        QVERIFY(!HasRoundedEdgesProperty(other));
        QVERIFY(IsSquare(other));
    }

    void roundsThePopUpsOfComboBoxes()
    {
        QWidget window;
        auto* const inner = new QWidget(&window);
        auto const* const comboBox = new QComboBox(inner);
        FixWidgetStyle::Apply(&window);
        QWidget const& popUp = *FindPopUp(*comboBox);
        QVERIFY(&popUp != &window);
        QVERIFY(HasRoundedEdgesProperty(popUp));
        QVERIFY(IsRounded(popUp));
        QVERIFY(!HasRoundedEdgesProperty(*comboBox));
        QVERIFY(IsSquare(*comboBox));
        QVERIFY(IsSquare(*comboBox->view()));
        QVERIFY(IsSquare(window));
    }

    void roundsThePopUpOfAComboBoxThatIsTheRoot()
    {
        QComboBox comboBox;
        FixWidgetStyle::Apply(&comboBox);
        QVERIFY(HasRoundedEdgesProperty(*FindPopUp(comboBox)));
        QVERIFY(IsRounded(*FindPopUp(comboBox)));
        QVERIFY(!HasRoundedEdgesProperty(comboBox));
        QVERIFY(IsSquare(comboBox));
    }

    void showsARoundedMenuAtTheGivenPosition_data() { Zelkor::Testing::AddScreenRows(); }

    void showsARoundedMenuAtTheGivenPosition()
    {
        QFETCH(QRect, screen);
        QWidget window;
        window.setGeometry(QRect(screen.center(), QSize(200, 100)));
        QMenu* const menu = AddMenu(&window, QStringLiteral("menu"));
        menu->addAction(QStringLiteral("entry"));
        FixWidgetStyle::Apply(&window);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QPoint const position = screen.topLeft() + QPoint(30, 40);
        menu->popup(position);
        QVERIFY(QTest::qWaitForWindowExposed(menu));
        QCOMPARE(QApplication::activePopupWidget(), menu);
        QCOMPARE(menu->geometry().topLeft(), position);
        QCOMPARE(menu->frameGeometry(), menu->geometry());
        QVERIFY(IsRounded(*menu));
        QTest::keyClick(menu, Qt::Key_Escape);
        QVERIFY(!menu->isVisible());
    }

    void showsARoundedPopUpOnTheScreenOfItsComboBox_data() { Zelkor::Testing::AddScreenRows(); }

    void showsARoundedPopUpOnTheScreenOfItsComboBox()
    {
        QFETCH(QRect, screen);
        QWidget window;
        window.setGeometry(QRect(screen.center(), QSize(200, 100)));
        auto* const comboBox = new QComboBox(&window);
        comboBox->addItems({QStringLiteral("one"), QStringLiteral("two")});
        FixWidgetStyle::Apply(&window);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        comboBox->showPopup();
        QWidget& popUp = *FindPopUp(*comboBox);
        QVERIFY(QTest::qWaitForWindowExposed(&popUp));
        QVERIFY(IsRounded(popUp));
        QCOMPARE(popUp.frameGeometry(), popUp.geometry());
        QVERIFY(screen.contains(popUp.geometry()));
        comboBox->hidePopup();
        QTRY_VERIFY(!popUp.isVisible());
    }

    void marksMenusBeforeComboBoxPopUps()
    {
        QWidget window;
        QComboBox const comboBox(&window);
        QMenu* const first = AddMenu(&window, QStringLiteral("first"));
        QComboBox const otherBox(&window);
        QMenu* const second = AddMenu(&window, QStringLiteral("second"));
        RoundedEdgesOrder const rounded;
        FixWidgetStyle::Apply(&window);
        QCOMPARE(rounded.objects, (QObjectList{first, second, FindPopUp(comboBox), FindPopUp(otherBox)}));
    }

    void marksTheRootAfterItsSubMenus()
    {
        QMenu menu;
        QMenu* const subMenu = menu.addMenu(QStringLiteral("more"));
        RoundedEdgesOrder const rounded;
        FixWidgetStyle::Apply(&menu);
        QCOMPARE(rounded.objects, (QObjectList{subMenu, &menu}));
    }

    void overwritesAFalseRoundedEdgesProperty()
    {
        QWidget window;
        QMenu* const menu = AddMenu(&window, QStringLiteral("menu"));
        menu->setProperty("roundedEdges", false);
        FixWidgetStyle::Apply(&window);
        QVERIFY(HasRoundedEdgesProperty(*menu) && IsRounded(*menu));
    }

    void roundsWidgetsByTheirProperty_data()
    {
        QTest::addColumn<QVariant>("property");
        QTest::addColumn<bool>("rounded");
        QTest::newRow("unset") << QVariant() << false;
        QTest::newRow("false") << QVariant(false) << false;
        QTest::newRow("true") << QVariant(true) << true;
        QTest::newRow("text true") << QVariant(QStringLiteral("true")) << true;
        QTest::newRow("text false") << QVariant(QStringLiteral("false")) << false;
        QTest::newRow("empty text") << QVariant(QString()) << false;
        QTest::newRow("number one") << QVariant(1) << true;
        QTest::newRow("number zero") << QVariant(0) << false;
        QTest::newRow("type without conversion to bool") << QVariant(QSize(1, 1)) << false;
    }

    void roundsWidgetsByTheirProperty()
    {
        QFETCH(QVariant, property);
        QFETCH(bool, rounded);
        QDialog window;
        QWidget child(&window);
        QWidget grandChild(&child);
        for (QWidget* const widget : {static_cast<QWidget*>(&window), &child, &grandChild}) {
            widget->setProperty("roundedEdges", property);
        }
        FixWidgetStyle::Apply(&window);
        for (QWidget const* const widget : {static_cast<QWidget*>(&window), &child, &grandChild}) {
            QVERIFY(rounded ? IsRounded(*widget) : IsSquare(*widget));
            QCOMPARE(widget->property("roundedEdges"), property);
        }
        QVERIFY(!child.isWindow() && !grandChild.isWindow());
        QCOMPARE(child.parentWidget(), &window);
    }

    void roundsOnlyTheWidgetThatHasTheProperty()
    {
        QWidget window;
        QWidget rounded(&window);
        QWidget const sibling(&window);
        QWidget const child(&rounded);
        rounded.setProperty("roundedEdges", true);
        FixWidgetStyle::Apply(&window);
        QVERIFY(IsRounded(rounded));
        QVERIFY(IsSquare(sibling) && IsSquare(child) && IsSquare(window));
    }

    void keepsOtherFlagsOfARoundedWindow()
    {
        QDialog window(nullptr, Qt::Tool | Qt::WindowStaysOnTopHint);
        window.setProperty("roundedEdges", true);
        FixWidgetStyle::Apply(&window);
        QCOMPARE(window.windowType(), Qt::Tool);
        QVERIFY(window.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        QVERIFY(IsRounded(window));
    }

    void removesTheHelpButtonOfTheRootOnly()
    {
        QDialog dialog(nullptr, Qt::Dialog | Qt::WindowContextHelpButtonHint | Qt::WindowCloseButtonHint);
        QDialog const inner(&dialog, Qt::Dialog | Qt::WindowContextHelpButtonHint);
        QVERIFY(dialog.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
        Qt::WindowFlags const before = dialog.windowFlags();
        FixWidgetStyle::Apply(&dialog);
        QCOMPARE(dialog.windowFlags(), before & ~Qt::WindowContextHelpButtonHint);
        QVERIFY(inner.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
    }

    void hidesAVisibleWindowThatLosesItsHelpButton()
    {
        QDialog dialog(nullptr, Qt::Dialog | Qt::WindowContextHelpButtonHint);
        dialog.show();
        QVERIFY(dialog.isVisible());
        FixWidgetStyle::Apply(&dialog);
        QVERIFY(!dialog.isVisible());
    }

    void keepsAWindowVisibleIfItsFlagsDoNotChange()
    {
        QWidget window;
        window.show();
        FixWidgetStyle::Apply(&window);
        QVERIFY(window.isVisible());
    }

    void namesTheActionAfterItsMenu_data()
    {
        QTest::addColumn<QString>("menuName");
        QTest::addColumn<QString>("actionName");
        QTest::addColumn<QString>("expected");
        QTest::newRow("named menu") << QStringLiteral("file") << QString() << QStringLiteral("action_file");
        QTest::newRow("unnamed menu") << QString() << QString() << QStringLiteral("action_");
        QTest::newRow("named action") << QStringLiteral("file") << QStringLiteral("custom") << QStringLiteral("custom");
        QTest::newRow("named action of an unnamed menu")
            << QString() << QStringLiteral("custom") << QStringLiteral("custom");
        QTest::newRow("format place marker") << QStringLiteral("%1") << QString() << QStringLiteral("action_%1");
    }

    void namesTheActionAfterItsMenu()
    {
        QFETCH(QString, menuName);
        QFETCH(QString, actionName);
        QFETCH(QString, expected);
        QMainWindow window;
        QMenu* const menu = window.menuBar()->addMenu(QStringLiteral("Title"));
        QMenu* const subMenu = menu->addMenu(QStringLiteral("More"));
        for (QMenu* const each : {menu, subMenu}) {
            each->setObjectName(menuName);
            each->menuAction()->setObjectName(actionName);
        }
        FixWidgetStyle::Apply(&window);
        for (QMenu const* const each : {menu, subMenu}) {
            QCOMPARE(each->menuAction()->objectName(), expected);
            QCOMPARE(each->objectName(), menuName);
        }
    }

    void doesNotNameOrRepolishTheRoot()
    {
        RecordingStyle style;
        QMenu menu;
        menu.setObjectName(QStringLiteral("root"));
        QMenu* const subMenu = menu.addMenu(QStringLiteral("More"));
        subMenu->setObjectName(QStringLiteral("more"));
        menu.setStyle(&style);
        style.calls.clear();
        FixWidgetStyle::Apply(&menu);
        QCOMPARE(menu.menuAction()->objectName(), QString());
        QCOMPARE(subMenu->menuAction()->objectName(), QStringLiteral("action_more"));
        QVERIFY(style.calls.isEmpty());
    }

    void doesNotNameOtherActions()
    {
        QMainWindow window;
        QMenu* const menu = window.menuBar()->addMenu(QStringLiteral("Title"));
        QAction const* const action = menu->addAction(QStringLiteral("Entry"));
        FixWidgetStyle::Apply(&window);
        QCOMPARE(action->objectName(), QString());
    }

    void repolishesAMenuOnceAfterNamingItsAction()
    {
        RecordingStyle style;
        QWidget window;
        QMenu* const menu = AddMenu(&window, QStringLiteral("menu"));
        menu->setStyle(&style);
        style.calls.clear();
        int callsBeforeNaming = -1;
        connect(menu->menuAction(), &QObject::objectNameChanged, this,
                [&style, &callsBeforeNaming] { callsBeforeNaming = style.calls.size(); });
        FixWidgetStyle::Apply(&window);
        QCOMPARE(callsBeforeNaming, 0);
        QCOMPARE(style.calls, Repolishing(menu));
    }

    void repolishesAMenuWithANamedAction()
    {
        RecordingStyle style;
        QWidget window;
        QMenu* const menu = AddMenu(&window, QStringLiteral("menu"));
        menu->menuAction()->setObjectName(QStringLiteral("custom"));
        menu->setStyle(&style);
        style.calls.clear();
        FixWidgetStyle::Apply(&window);
        QCOMPARE(style.calls, Repolishing(menu));
    }

    void appliesStyleSheetRulesForRoundedEdges()
    {
        QWidget window;
        window.setStyleSheet(QStringLiteral("QMenu[roundedEdges=\"true\"] { min-width: 234px }"));
        QMenu* const menu = AddMenu(&window, QStringLiteral("menu"));
        menu->ensurePolished();
        QCOMPARE(menu->minimumWidth(), 0);
        FixWidgetStyle::Apply(&window);
        QCOMPARE(menu->minimumWidth(), 234);
    }

    void namesStandardButtonsAndSetsTheirHints_data()
    {
        QTest::addColumn<QDialogButtonBox::StandardButton>("standard");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariant>("styleHint");
        auto const addRow = [](char const* title, QDialogButtonBox::StandardButton standard, char const* name,
                               char const* hint) {
            QTest::newRow(title) << standard << QString::fromLatin1(name)
                                 << (hint ? QVariant(QString::fromLatin1(hint)) : QVariant());
        };
        addRow("Ok", QDialogButtonBox::Ok, "okButton", "activeButton");
        addRow("Cancel", QDialogButtonBox::Cancel, "cancelButton", nullptr);
        addRow("Close", QDialogButtonBox::Close, "closeButton", nullptr);
        addRow("Yes", QDialogButtonBox::Yes, "yesButton", nullptr);
        addRow("No", QDialogButtonBox::No, "noButton", nullptr);
        addRow("RestoreDefaults", QDialogButtonBox::RestoreDefaults, "restoreButton", "highlightedButton");
        addRow("Save", QDialogButtonBox::Save, "", nullptr);
        addRow("SaveAll", QDialogButtonBox::SaveAll, "", nullptr);
        addRow("Open", QDialogButtonBox::Open, "", nullptr);
        addRow("YesToAll", QDialogButtonBox::YesToAll, "", nullptr);
        addRow("NoToAll", QDialogButtonBox::NoToAll, "", nullptr);
        addRow("Abort", QDialogButtonBox::Abort, "", nullptr);
        addRow("Retry", QDialogButtonBox::Retry, "", nullptr);
        addRow("Ignore", QDialogButtonBox::Ignore, "", nullptr);
        addRow("Discard", QDialogButtonBox::Discard, "", nullptr);
        addRow("Help", QDialogButtonBox::Help, "", nullptr);
        addRow("Apply", QDialogButtonBox::Apply, "", nullptr);
        addRow("Reset", QDialogButtonBox::Reset, "", nullptr);
    }

    void namesStandardButtonsAndSetsTheirHints()
    {
        QFETCH(QDialogButtonBox::StandardButton, standard);
        QFETCH(QString, name);
        QFETCH(QVariant, styleHint);
        QDialog dialog;
        QDialogButtonBox const box(standard, &dialog);
        FixWidgetStyle::Apply(&dialog);
        QCOMPARE(box.buttons().size(), 1);
        QCOMPARE(box.button(standard)->objectName(), name);
        QCOMPARE(box.button(standard)->property("styleHint"), styleHint);
    }

    void keepsACustomNameOfAStandardButton_data() { namesStandardButtonsAndSetsTheirHints_data(); }

    void keepsACustomNameOfAStandardButton()
    {
        QFETCH(QDialogButtonBox::StandardButton, standard);
        QFETCH(QVariant, styleHint);
        QDialog dialog;
        QDialogButtonBox const box(standard, &dialog);
        box.button(standard)->setObjectName(QStringLiteral("custom"));
        FixWidgetStyle::Apply(&dialog);
        QCOMPARE(box.button(standard)->objectName(), QStringLiteral("custom"));
        QCOMPARE(box.button(standard)->property("styleHint"), styleHint);
    }

    void keepsACustomHintOfButtonsWithoutDefaultHint()
    {
        QDialog dialog;
        QDialogButtonBox const box(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
        for (QAbstractButton* const button : {box.button(QDialogButtonBox::Ok), box.button(QDialogButtonBox::Cancel)}) {
            button->setProperty("styleHint", QStringLiteral("custom"));
        }
        FixWidgetStyle::Apply(&dialog);
        QCOMPARE(box.button(QDialogButtonBox::Ok)->property("styleHint").toString(), QStringLiteral("activeButton"));
        QCOMPARE(box.button(QDialogButtonBox::Cancel)->property("styleHint").toString(), QStringLiteral("custom"));
    }

    void doesNotChangeCustomButtons()
    {
        QDialog dialog;
        QDialogButtonBox box(&dialog);
        QPushButton const* const button = box.addButton(QStringLiteral("custom"), QDialogButtonBox::AcceptRole);
        FixWidgetStyle::Apply(&dialog);
        QCOMPARE(button->objectName(), QString());
        QVERIFY(button->dynamicPropertyNames().isEmpty());
    }

    void changesEveryButtonBoxBelowTheRoot()
    {
        QDialog dialog;
        QDialogButtonBox const first(QDialogButtonBox::Ok, &dialog);
        auto* const outer = new QWidget(&dialog);
        QDialogButtonBox const second(QDialogButtonBox::Ok, new QWidget(outer));
        FixWidgetStyle::Apply(&dialog);
        for (QDialogButtonBox const* const box : {&first, &second}) {
            QCOMPARE(box->button(QDialogButtonBox::Ok)->objectName(), QStringLiteral("okButton"));
            QCOMPARE(box->button(QDialogButtonBox::Ok)->property("styleHint").toString(),
                     QStringLiteral("activeButton"));
        }
    }

    void doesNotChangeAButtonBoxThatIsTheRoot()
    {
        QDialogButtonBox outer(QDialogButtonBox::Ok);
        QDialogButtonBox const inner(QDialogButtonBox::Ok, &outer);
        FixWidgetStyle::Apply(&outer);
        QCOMPARE(outer.button(QDialogButtonBox::Ok)->objectName(), QString());
        QVERIFY(!RequestsLayoutForNewChild(outer));
        QCOMPARE(inner.button(QDialogButtonBox::Ok)->objectName(), QStringLiteral("okButton"));
    }

    void installsALayoutControllerInButtonBoxes()
    {
        QDialog dialog;
        QDialogButtonBox box(QDialogButtonBox::Ok, &dialog);
        QVERIFY(!RequestsLayoutForNewChild(box));
        FixWidgetStyle::Apply(&dialog);
        QVERIFY(RequestsLayoutForNewChild(box));
    }

    void repolishesButtonsForTheirHintAndOnceMore()
    {
        RecordingStyle style({"objectName", "styleHint"});
        QDialog dialog;
        QDialogButtonBox box(QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::RestoreDefaults,
                             &dialog);
        QPushButton* const ok = box.button(QDialogButtonBox::Ok);
        QPushButton* const cancel = box.button(QDialogButtonBox::Cancel);
        QPushButton* const restore = box.button(QDialogButtonBox::RestoreDefaults);
        QPushButton* const custom = box.addButton(QStringLiteral("custom"), QDialogButtonBox::ActionRole);
        custom->setObjectName(QStringLiteral("custom"));
        for (QPushButton* const button : {ok, cancel, restore, custom}) {
            button->setStyle(&style);
        }
        style.calls.clear();
        FixWidgetStyle::Apply(&dialog);

        auto const okCalls = Repolishing(ok, {QStringLiteral("okButton"), QStringLiteral("activeButton")});
        auto const restoreCalls =
            Repolishing(restore, {QStringLiteral("restoreButton"), QStringLiteral("highlightedButton")});
        QCOMPARE(style.CallsFor(ok), okCalls + okCalls);
        QCOMPARE(style.CallsFor(restore), restoreCalls + restoreCalls);
        QCOMPARE(style.CallsFor(cancel), Repolishing(cancel, {QStringLiteral("cancelButton"), QString()}));
        QCOMPARE(style.CallsFor(custom), Repolishing(custom, {QStringLiteral("custom"), QString()}));
        // Apply() sets a style hint on `ok` and `restore`, and repolishes these two buttons. Afterwards, it repolishes
        // all buttons.
        QCOMPARE(style.calls.mid(0, 4), okCalls + restoreCalls);
    }

    void appliesStyleSheetRulesForButtonNames()
    {
        QDialog dialog;
        dialog.setStyleSheet(QStringLiteral("QPushButton#cancelButton { min-width: 234px }"));
        QDialogButtonBox const box(QDialogButtonBox::Cancel, &dialog);
        QPushButton const* const cancel = box.button(QDialogButtonBox::Cancel);
        cancel->ensurePolished();
        QVERIFY(cancel->minimumWidth() < 234);
        FixWidgetStyle::Apply(&dialog);
        QVERIFY(cancel->minimumWidth() >= 234);
    }

    void aSecondCallHasNoFurtherEffect()
    {
        QDialog dialog;
        QDialogButtonBox const box(QDialogButtonBox::Ok, &dialog);
        QMenu* const menu = AddMenu(&dialog, QStringLiteral("menu"));
        FixWidgetStyle::Apply(&dialog);
        menu->setObjectName(QStringLiteral("renamed"));
        Qt::WindowFlags const flags = menu->windowFlags();
        FixWidgetStyle::Apply(&dialog);
        QCOMPARE(menu->menuAction()->objectName(), QStringLiteral("action_menu"));
        QCOMPARE(menu->windowFlags(), flags);
        QCOMPARE(box.button(QDialogButtonBox::Ok)->objectName(), QStringLiteral("okButton"));
    }
};

ZQTUTIL_WIDGET_TEST_MAIN(FixWidgetStyleTest)
#include "FixWidgetStyleTest.moc"
