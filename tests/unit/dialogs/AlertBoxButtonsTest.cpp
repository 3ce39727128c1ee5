#include <support/TestCase.h>
#include <support/displays/RecordingStyle.h>

#include <Util/AlertBox.h>

#include <QtTest/QtTest>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QPushButton>

#include <memory>

using Zelkor::Testing::RecordingStyle;
using Zelkor::Util::AlertBox;

Q_DECLARE_METATYPE(QMessageBox::StandardButton)
Q_DECLARE_METATYPE(QMessageBox::ButtonRole)

namespace
{

/// Keeps the order in which the dynamic properties of an object change.
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

/// The tags that a button has.
QString Tags(QWidget const& widget)
{
    QStringList properties;
    for (char const* const property : {"SubStyle", "styleHint", "buttonRole"}) {
        properties += widget.property(property).toString();
    }
    return properties.join(QLatin1Char(','));
}

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
    void standardButtonIsNamedAndTagged_data()
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

    void standardButtonIsNamedAndTagged()
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

    void customButtonIsUnknownAndTaggedByItsRole_data()
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

    void customButtonIsUnknownAndTaggedByItsRole()
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

    void buttonOfTheDetailsIsACustomOneForActions()
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

    void buttonsOfTheConstructorAreNamedAllOfThem()
    {
        auto const box = CreateBox(QMessageBox::Ok | QMessageBox::Cancel | QMessageBox::RestoreDefaults);
        for (char const* const name : {"buttonOk", "buttonCancel", "buttonRestoreDefaults"}) {
            QVERIFY2(box->findChild<QPushButton*>(QString::fromLatin1(name)), name);
        }
    }

    void namesAreGivenAgainToAllButtons()
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

    void namingTagsNothing()
    {
        auto const box = CreateBox(QMessageBox::Ok);
        box->SetDefaultButtonNames();
        for (char const* const property : {"SubStyle", "styleHint", "buttonRole"}) {
            QVERIFY2(!box->button(QMessageBox::Ok)->property(property).isValid(), property);
        }
    }

    void taggingNamesNothing()
    {
        AlertBox box;
        QAbstractButton const* const button = box.addButton(QMessageBox::Ok);
        box.PrepareToShow();
        QCOMPARE(button->objectName(), QString());
        QCOMPARE(button->property("buttonRole"), Text("Accept"));
    }

    void removedButtonsAreLeftAlone()
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

    void propertiesAreSetInTheirOrder_data()
    {
        QTest::addColumn<QMessageBox::StandardButton>("standard");
        QTest::addColumn<QByteArrayList>("properties");
        QTest::newRow("Ok") << QMessageBox::Ok << QByteArrayList{"SubStyle", "styleHint", "buttonRole"};
        QTest::newRow("Yes") << QMessageBox::Yes << QByteArrayList{"SubStyle", "styleHint", "buttonRole"};
        QTest::newRow("Cancel") << QMessageBox::Cancel << QByteArrayList{"SubStyle", "styleHint", "buttonRole"};
        QTest::newRow("No") << QMessageBox::No << QByteArrayList{"styleHint", "buttonRole"};
        QTest::newRow("Help") << QMessageBox::Help << QByteArrayList{"buttonRole"};
    }

    void propertiesAreSetInTheirOrder()
    {
        QFETCH(QMessageBox::StandardButton, standard);
        QFETCH(QByteArrayList, properties);
        auto const box = CreateBox(standard);
        PropertyLog const log(box->button(standard));
        box->SetButtonsSubStyle();
        QCOMPARE(log.names, properties);
    }

    void propertiesAreOverwritten()
    {
        auto const box = CreateBox(QMessageBox::Ok);
        QAbstractButton* const ok = box->button(QMessageBox::Ok);
        for (char const* const property : {"SubStyle", "styleHint", "buttonRole"}) {
            ok->setProperty(property, QStringLiteral("other"));
        }
        box->SetButtonsSubStyle();
        QCOMPARE(ok->property("SubStyle"), Text("Ok"));
        QCOMPARE(ok->property("styleHint"), Text("activeButton"));
        QCOMPARE(ok->property("buttonRole"), Text("Accept"));
    }

    void propertiesThatDoNotBelongToTheButtonStay()
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

    void buttonsAreTaggedInTheirOrder()
    {
        auto const box = CreateBox(QMessageBox::Ok | QMessageBox::Cancel | QMessageBox::Help);
        QObjectList tagged;
        class Order : public QObject
        {
        public:
            explicit Order(QObjectList& objects)
                : objects_(objects)
            {}

            bool eventFilter(QObject* watched, QEvent* event) override
            {
                if (event->type() == QEvent::DynamicPropertyChange && !objects_.contains(watched)) {
                    objects_ += watched;
                }
                return false;
            }

        private:
            QObjectList& objects_;
        } order(tagged);
        QObjectList expected;
        auto const buttons = box->buttons();
        for (QAbstractButton* const button : buttons) {
            button->installEventFilter(&order);
            expected += button;
        }
        box->SetButtonsSubStyle();
        QCOMPARE(tagged.size(), 3);
        QCOMPARE(tagged, expected);
    }

    void everyPropertyIsPolishedInOnce_data()
    {
        QTest::addColumn<QMessageBox::StandardButton>("standard");
        QTest::addColumn<QStringList>("polishes");
        auto const both = [](QStringList const& states) {
            QStringList log;
            for (QString const& state : states) {
                log << QStringLiteral("unpolish ") + state << QStringLiteral("polish ") + state;
            }
            return log;
        };
        QTest::newRow("Ok") << QMessageBox::Ok
                            << both({QStringLiteral("Ok,,"), QStringLiteral("Ok,activeButton,"),
                                     QStringLiteral("Ok,activeButton,Accept")});
        QTest::newRow("Yes") << QMessageBox::Yes
                             << both({QStringLiteral("Yes,,"), QStringLiteral("Yes,activeButton,"),
                                      QStringLiteral("Yes,activeButton,Yes")});
        QTest::newRow("Cancel") << QMessageBox::Cancel
                                << both({QStringLiteral("Cancel,,"), QStringLiteral("Cancel,rejectButton,"),
                                         QStringLiteral("Cancel,rejectButton,Reject")});
        QTest::newRow("No") << QMessageBox::No
                            << both({QStringLiteral(",rejectButton,"), QStringLiteral(",rejectButton,No")});
        QTest::newRow("Reset") << QMessageBox::Reset << both({QStringLiteral(",,Reset")});
    }

    void everyPropertyIsPolishedInOnce()
    {
        QFETCH(QMessageBox::StandardButton, standard);
        QFETCH(QStringList, polishes);
        RecordingStyle style(Tags);
        auto const box = CreateBox(standard);
        box->button(standard)->setStyle(&style);
        style.log.clear();
        box->SetButtonsSubStyle();
        QCOMPARE(style.log, polishes);
    }

    void propertiesArePolishedInAgainWhenTaggedAgain()
    {
        RecordingStyle style(Tags);
        auto const box = CreateBox(QMessageBox::Ok);
        box->button(QMessageBox::Ok)->setStyle(&style);
        box->SetButtonsSubStyle();
        style.log.clear();
        box->SetButtonsSubStyle();
        QString const state = QStringLiteral(" Ok,activeButton,Accept");
        QCOMPARE(style.log.size(), 6);
        QCOMPARE(style.log.count(QStringLiteral("unpolish") + state), 3);
        QCOMPARE(style.log.count(QStringLiteral("polish") + state), 3);
    }

    void spacingIsThatOfTheButtonRow()
    {
        auto const box = CreateBox(QMessageBox::Ok | QMessageBox::Cancel);
        box->SetSpacing(37);
        QCOMPARE(box->GetSpacing(), 37);
        QCOMPARE(ButtonRow(*box)->spacing(), 37);
        box->SetSpacing(0);
        QCOMPARE(box->GetSpacing(), 0);
        QCOMPARE(ButtonRow(*box)->spacing(), 0);
    }

    void spacingStandsBetweenTheButtons()
    {
        auto const box = CreateBox(QMessageBox::Ok | QMessageBox::Cancel);
        box->SetSpacing(61);
        box->Show(false);
        QRect const ok = box->button(QMessageBox::Ok)->geometry();
        QRect const cancel = box->button(QMessageBox::Cancel)->geometry();
        QCOMPARE(qMax(ok.left(), cancel.left()) - qMin(ok.right(), cancel.right()) - 1, 61);
    }

    void spacingOfAnotherButtonBoxStays()
    {
        auto const box = CreateBox(QMessageBox::Ok);
        auto* const other = new QDialogButtonBox(QDialogButtonBox::Ok, box.get());
        other->layout()->setSpacing(3);
        box->SetSpacing(29);
        QCOMPARE(other->layout()->spacing(), 3);
    }

    void spacingOfNoButtonsIsForgotten()
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

    void spacingOfAColumnOfButtonsIsForgotten()
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
