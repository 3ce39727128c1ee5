#include <support/TestCase.h>
#include <support/displays/RecordingStyle.h>

#include <Util/AlertBox.h>

#include <QtTest/QtTest>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QPushButton>

#include <initializer_list>
#include <memory>

using Zelkor::Testing::RecordingStyle;
using Zelkor::Testing::Repolishing;
using Zelkor::Util::AlertBox;

Q_DECLARE_METATYPE(QMessageBox::StandardButton)
Q_DECLARE_METATYPE(QMessageBox::ButtonRole)

namespace
{

/// Records the name of each dynamic property of an object that changes, in the order of the changes.
class PropertyLog : public QObject
{
public:
    explicit PropertyLog(QObject* object) { object->installEventFilter(this); }

    QByteArrayList names;

    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QEvent::DynamicPropertyChange) {
            names += static_cast<QDynamicPropertyChangeEvent*>(event)->propertyName();
        }
        return false;
    }
};

/// Records the objects whose dynamic properties change, in the order of their first change.
class ChangeOrder : public QObject
{
public:
    QObjectList objects;

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::DynamicPropertyChange && !objects.contains(watched)) {
            objects += watched;
        }
        return false;
    }
};

/// The dynamic properties that AlertBox sets on its buttons.
constexpr std::initializer_list<char const*> ButtonProperties = {"SubStyle", "styleHint", "buttonRole"};

std::unique_ptr<AlertBox> CreateBox(QMessageBox::StandardButtons buttons)
{
    return std::make_unique<AlertBox>(AlertBox::Information, QStringLiteral("title"), QStringLiteral("text"), buttons);
}

QVariant Text(char const* text)
{
    return text ? QVariant(QString::fromLatin1(text)) : QVariant();
}

QHBoxLayout* ButtonRow(AlertBox const& box)
{
    return qobject_cast<QHBoxLayout*>(box.findChild<QDialogButtonBox*>()->layout());
}

} // namespace

class AlertBoxButtonsTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void namesStandardButtonsAndSetsTheirProperties_data()
    {
        QTest::addColumn<QMessageBox::StandardButton>("standard");
        QTest::addColumn<QVariant>("subStyle");
        QTest::addColumn<QVariant>("styleHint");
        QTest::addColumn<QVariant>("role");
        auto const addRow = [](char const* name, QMessageBox::StandardButton standard, char const* subStyle,
                               char const* styleHint, char const* role) {
            QTest::newRow(name) << standard << Text(subStyle) << Text(styleHint) << Text(role);
        };
        addRow("Ok", QMessageBox::Ok, "Ok", "activeButton", "Accept");
        addRow("Save", QMessageBox::Save, "Ok", "activeButton", "Accept");
        addRow("SaveAll", QMessageBox::SaveAll, "Ok", "activeButton", "Accept");
        addRow("Open", QMessageBox::Open, "Ok", "activeButton", "Accept");
        addRow("Yes", QMessageBox::Yes, "Yes", "activeButton", "Yes");
        addRow("YesToAll", QMessageBox::YesToAll, "Yes", "activeButton", "Yes");
        addRow("No", QMessageBox::No, nullptr, "rejectButton", "No");
        addRow("NoToAll", QMessageBox::NoToAll, nullptr, nullptr, "No");
        addRow("Abort", QMessageBox::Abort, "Cancel", "rejectButton", "Reject");
        addRow("Retry", QMessageBox::Retry, "Ok", "activeButton", "Accept");
        addRow("Ignore", QMessageBox::Ignore, "Ok", "activeButton", "Accept");
        addRow("Close", QMessageBox::Close, "Cancel", "rejectButton", "Reject");
        addRow("Cancel", QMessageBox::Cancel, "Cancel", "rejectButton", "Reject");
        addRow("Discard", QMessageBox::Discard, nullptr, nullptr, "Destructive");
        addRow("Help", QMessageBox::Help, nullptr, nullptr, "Help");
        addRow("Apply", QMessageBox::Apply, nullptr, nullptr, "Apply");
        addRow("Reset", QMessageBox::Reset, nullptr, nullptr, "Reset");
        addRow("RestoreDefaults", QMessageBox::RestoreDefaults, nullptr, nullptr, "Reset");
    }

    void namesStandardButtonsAndSetsTheirProperties()
    {
        QFETCH(QMessageBox::StandardButton, standard);
        QFETCH(QVariant, subStyle);
        QFETCH(QVariant, styleHint);
        QFETCH(QVariant, role);
        auto const box = CreateBox(standard);
        QAbstractButton const* const button = box->button(standard);
        QCOMPARE(button->objectName(), QStringLiteral("button") + QString::fromLatin1(QTest::currentDataTag()));
        box->SetButtonsSubStyle();
        QCOMPARE(button->property("SubStyle"), subStyle);
        QCOMPARE(button->property("styleHint"), styleHint);
        QCOMPARE(button->property("buttonRole"), role);
    }

    void namesCustomButtonsUnknownAndSetsPropertiesByRole_data()
    {
        QTest::addColumn<QMessageBox::ButtonRole>("role");
        QTest::addColumn<QVariant>("subStyle");
        QTest::addColumn<QVariant>("styleHint");
        auto const addRow = [](char const* name, QMessageBox::ButtonRole role, char const* subStyle,
                               char const* styleHint) {
            QTest::newRow(name) << role << Text(subStyle) << Text(styleHint);
        };
        addRow("Accept", QMessageBox::AcceptRole, "Ok", "activeButton");
        addRow("Reject", QMessageBox::RejectRole, "Cancel", "rejectButton");
        addRow("Destructive", QMessageBox::DestructiveRole, nullptr, nullptr);
        addRow("Action", QMessageBox::ActionRole, nullptr, nullptr);
        addRow("Help", QMessageBox::HelpRole, nullptr, nullptr);
        addRow("Yes", QMessageBox::YesRole, "Yes", "activeButton");
        addRow("No", QMessageBox::NoRole, nullptr, nullptr);
        addRow("Reset", QMessageBox::ResetRole, nullptr, nullptr);
        addRow("Apply", QMessageBox::ApplyRole, nullptr, nullptr);
    }

    void namesCustomButtonsUnknownAndSetsPropertiesByRole()
    {
        QFETCH(QMessageBox::ButtonRole, role);
        QFETCH(QVariant, subStyle);
        QFETCH(QVariant, styleHint);
        auto const box = CreateBox(QMessageBox::NoButton);
        QAbstractButton const* const button = box->addButton(QStringLiteral("custom"), role);
        QCOMPARE(button->objectName(), QString());
        box->SetDefaultButtonNames();
        box->SetButtonsSubStyle();
        QCOMPARE(button->objectName(), QStringLiteral("buttonUnknown"));
        QCOMPARE(button->property("SubStyle"), subStyle);
        QCOMPARE(button->property("styleHint"), styleHint);
        QCOMPARE(button->property("buttonRole"), Text(QTest::currentDataTag()));
    }

    void treatsTheDetailsButtonAsACustomActionButton()
    {
        auto const box = CreateBox(QMessageBox::NoButton);
        box->setDetailedText(QStringLiteral("details"));
        QCOMPARE(box->buttons().size(), 1);
        box->SetDefaultButtonNames();
        box->SetButtonsSubStyle();
        QAbstractButton const* const button = box->buttons().constFirst();
        QCOMPARE(button->objectName(), QStringLiteral("buttonUnknown"));
        QCOMPARE(button->property("buttonRole"), Text("Action"));
        QVERIFY(!button->property("SubStyle").isValid());
    }

    void namesAllButtonsInTheConstructor()
    {
        auto const box = CreateBox(QMessageBox::Ok | QMessageBox::Cancel | QMessageBox::RestoreDefaults);
        for (char const* const name : {"buttonOk", "buttonCancel", "buttonRestoreDefaults"}) {
            QVERIFY2(box->findChild<QPushButton*>(QString::fromLatin1(name)), name);
        }
    }

    void setDefaultButtonNamesRenamesAllButtons()
    {
        auto const box = CreateBox(QMessageBox::Ok);
        QAbstractButton* const ok = box->button(QMessageBox::Ok);
        ok->setObjectName(QStringLiteral("ownName"));
        QAbstractButton const* const cancel = box->addButton(QMessageBox::Cancel);
        QAbstractButton const* const first = box->addButton(QStringLiteral("first"), QMessageBox::ActionRole);
        box->SetDefaultButtonNames();
        QAbstractButton const* const second = box->addButton(QStringLiteral("second"), QMessageBox::AcceptRole);
        box->SetDefaultButtonNames();
        QCOMPARE(ok->objectName(), QStringLiteral("buttonOk"));
        QCOMPARE(cancel->objectName(), QStringLiteral("buttonCancel"));
        QCOMPARE(first->objectName(), QStringLiteral("buttonUnknown"));
        QCOMPARE(second->objectName(), QStringLiteral("buttonUnknown"));
    }

    void setDefaultButtonNamesSetsNoProperties()
    {
        auto const box = CreateBox(QMessageBox::Ok);
        box->SetDefaultButtonNames();
        for (char const* const property : ButtonProperties) {
            QVERIFY2(!box->button(QMessageBox::Ok)->property(property).isValid(), property);
        }
    }

    void prepareToShowDoesNotNameButtons()
    {
        AlertBox box;
        QAbstractButton const* const button = box.addButton(QMessageBox::Ok);
        box.PrepareToShow();
        QCOMPARE(button->objectName(), QString());
        QCOMPARE(button->property("buttonRole"), Text("Accept"));
    }

    void ignoresRemovedButtons()
    {
        auto const box = CreateBox(QMessageBox::Ok | QMessageBox::Yes);
        std::unique_ptr<QAbstractButton> const button(
            box->addButton(QStringLiteral("custom"), QMessageBox::AcceptRole));
        box->removeButton(button.get());
        box->SetDefaultButtonNames();
        box->SetButtonsSubStyle();
        QCOMPARE(button->objectName(), QString());
        QVERIFY(!button->property("buttonRole").isValid());
    }

    void setsButtonPropertiesInOrder_data()
    {
        QTest::addColumn<QMessageBox::StandardButton>("standard");
        QTest::addColumn<QByteArrayList>("properties");
        QTest::newRow("Ok") << QMessageBox::Ok << QByteArrayList{"SubStyle", "styleHint", "buttonRole"};
        QTest::newRow("Yes") << QMessageBox::Yes << QByteArrayList{"SubStyle", "styleHint", "buttonRole"};
        QTest::newRow("Cancel") << QMessageBox::Cancel << QByteArrayList{"SubStyle", "styleHint", "buttonRole"};
        QTest::newRow("No") << QMessageBox::No << QByteArrayList{"styleHint", "buttonRole"};
        QTest::newRow("Help") << QMessageBox::Help << QByteArrayList{"buttonRole"};
    }

    void setsButtonPropertiesInOrder()
    {
        QFETCH(QMessageBox::StandardButton, standard);
        QFETCH(QByteArrayList, properties);
        auto const box = CreateBox(standard);
        PropertyLog const log(box->button(standard));
        box->SetButtonsSubStyle();
        QCOMPARE(log.names, properties);
    }

    void overwritesButtonProperties()
    {
        auto const box = CreateBox(QMessageBox::Ok);
        QAbstractButton* const ok = box->button(QMessageBox::Ok);
        for (char const* const property : ButtonProperties) {
            ok->setProperty(property, QStringLiteral("other"));
        }
        box->SetButtonsSubStyle();
        QCOMPARE(ok->property("SubStyle"), Text("Ok"));
        QCOMPARE(ok->property("styleHint"), Text("activeButton"));
        QCOMPARE(ok->property("buttonRole"), Text("Accept"));
    }

    void keepsPropertiesThatTheButtonTypeDoesNotDefine()
    {
        auto const box = CreateBox(QMessageBox::Help | QMessageBox::No);
        for (auto const standard : {QMessageBox::Help, QMessageBox::No}) {
            box->button(standard)->setProperty("SubStyle", QStringLiteral("mine"));
        }
        box->button(QMessageBox::Help)->setProperty("styleHint", QStringLiteral("mine"));
        box->SetButtonsSubStyle();
        QCOMPARE(box->button(QMessageBox::Help)->property("SubStyle"), Text("mine"));
        QCOMPARE(box->button(QMessageBox::No)->property("SubStyle"), Text("mine"));
        QCOMPARE(box->button(QMessageBox::Help)->property("styleHint"), Text("mine"));
    }

    void setsPropertiesInTheOrderOfTheButtons()
    {
        auto const box = CreateBox(QMessageBox::Ok | QMessageBox::Cancel | QMessageBox::Help);
        ChangeOrder changes;
        QObjectList expected;
        auto const buttons = box->buttons();
        for (QAbstractButton* const button : buttons) {
            button->installEventFilter(&changes);
            expected += button;
        }
        box->SetButtonsSubStyle();
        QCOMPARE(changes.objects.size(), 3);
        QCOMPARE(changes.objects, expected);
    }

    void repolishesAfterEachProperty_data()
    {
        QTest::addColumn<QMessageBox::StandardButton>("standard");
        QTest::addColumn<QVector<QStringList>>("states");
        QString const none;
        QString const subStyle = QStringLiteral("Ok");
        QString const active = QStringLiteral("activeButton");
        QString const reject = QStringLiteral("rejectButton");
        QString const yes = QStringLiteral("Yes");
        QString const cancel = QStringLiteral("Cancel");
        QTest::newRow("Ok") << QMessageBox::Ok
                            << QVector<QStringList>{{subStyle, none, none},
                                                    {subStyle, active, none},
                                                    {subStyle, active, QStringLiteral("Accept")}};
        QTest::newRow("Yes") << QMessageBox::Yes
                             << QVector<QStringList>{{yes, none, none}, {yes, active, none}, {yes, active, yes}};
        QTest::newRow("Cancel") << QMessageBox::Cancel
                                << QVector<QStringList>{{cancel, none, none},
                                                        {cancel, reject, none},
                                                        {cancel, reject, QStringLiteral("Reject")}};
        QTest::newRow("No") << QMessageBox::No
                            << QVector<QStringList>{{none, reject, none}, {none, reject, QStringLiteral("No")}};
        QTest::newRow("Reset") << QMessageBox::Reset << QVector<QStringList>{{none, none, QStringLiteral("Reset")}};
    }

    void repolishesAfterEachProperty()
    {
        QFETCH(QMessageBox::StandardButton, standard);
        QFETCH(QVector<QStringList>, states);
        RecordingStyle style(ButtonProperties);
        auto const box = CreateBox(standard);
        QAbstractButton* const button = box->button(standard);
        button->setStyle(&style);
        style.calls.clear();
        box->SetButtonsSubStyle();
        RecordingStyle::Calls expected;
        for (QStringList const& state : states) {
            expected += Repolishing(button, state);
        }
        QCOMPARE(style.calls, expected);
    }

    void repolishesAgainForUnchangedProperties()
    {
        RecordingStyle style(ButtonProperties);
        auto const box = CreateBox(QMessageBox::Ok);
        QAbstractButton* const ok = box->button(QMessageBox::Ok);
        ok->setStyle(&style);
        box->SetButtonsSubStyle();
        style.calls.clear();
        box->SetButtonsSubStyle();
        QStringList const state{QStringLiteral("Ok"), QStringLiteral("activeButton"), QStringLiteral("Accept")};
        QCOMPARE(style.calls, Repolishing(ok, state) + Repolishing(ok, state) + Repolishing(ok, state));
    }

    void setSpacingChangesTheButtonLayout()
    {
        auto const box = CreateBox(QMessageBox::Ok | QMessageBox::Cancel);
        box->SetSpacing(37);
        QCOMPARE(box->GetSpacing(), 37);
        QCOMPARE(ButtonRow(*box)->spacing(), 37);
        box->SetSpacing(0);
        QCOMPARE(box->GetSpacing(), 0);
        QCOMPARE(ButtonRow(*box)->spacing(), 0);
    }

    void spacingSeparatesTheButtons()
    {
        auto const box = CreateBox(QMessageBox::Ok | QMessageBox::Cancel);
        box->SetSpacing(61);
        box->Show(false);
        QRect const ok = box->button(QMessageBox::Ok)->geometry();
        QRect const cancel = box->button(QMessageBox::Cancel)->geometry();
        QCOMPARE(qMax(ok.left(), cancel.left()) - qMin(ok.right(), cancel.right()) - 1, 61);
    }

    void setSpacingIgnoresOtherButtonBoxes()
    {
        auto const box = CreateBox(QMessageBox::Ok);
        auto* const other = new QDialogButtonBox(QDialogButtonBox::Ok, box.get());
        other->layout()->setSpacing(3);
        box->SetSpacing(29);
        QCOMPARE(other->layout()->spacing(), 3);
    }

    void ignoresSpacingWithoutButtons()
    {
        auto const box = CreateBox(QMessageBox::NoButton);
        int const before = ButtonRow(*box)->spacing();
        box->SetSpacing(before + 11);
        QCOMPARE(box->GetSpacing(), 0);
        QCOMPARE(ButtonRow(*box)->spacing(), before);
        QPushButton* const button = box->addButton(QMessageBox::Ok);
        box->SetSpacing(13);
        box->removeButton(button);
        delete button;
        box->SetSpacing(17);
        QCOMPARE(box->GetSpacing(), 13);
    }

    void ignoresSpacingForAVerticalButtonBox()
    {
        auto const box = CreateBox(QMessageBox::Ok);
        auto* const buttonBox = box->findChild<QDialogButtonBox*>();
        buttonBox->setOrientation(Qt::Vertical);
        int const before = buttonBox->layout()->spacing();
        box->SetSpacing(before + 11);
        QCOMPARE(box->GetSpacing(), 0);
        QCOMPARE(buttonBox->layout()->spacing(), before);
    }
};

ZQTUTIL_WIDGET_TEST_MAIN(AlertBoxButtonsTest)
#include "AlertBoxButtonsTest.moc"
