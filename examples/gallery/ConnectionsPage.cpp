#include "ConnectionsPage.h"

#include "StatusLabel.h"
#include "Timeline.h"
#include "Widgets.h"

#include <Util/ObjectsConnector.h>

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDial>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>
#include <QtWidgets/QTableWidget>

namespace Zelkor::Gallery
{
namespace
{

using Util::ObjectsConnector;

constexpr int SampleValue = 40;

QString Signal()
{
    return QStringLiteral("valueChanged(int)");
}

QString Slot()
{
    return QStringLiteral("setValue(int)");
}

} // namespace

ConnectionsPage::ConnectionsPage(QWidget* parent)
    : Page(parent)
    , controlBox_(new QComboBox)
    , sideBox_(new QComboBox)
    , idBox_(new QComboBox)
    , queuedBox_(new QCheckBox(tr("&Queued")))
    , registerButton_(new QPushButton(tr("&Register")))
    , unregisterButton_(new QPushButton(tr("&Unregister")))
    , table_(new QTableWidget)
    , timeline_(new Timeline)
{
    sideBox_->addItem(tr("Emitter of %1").arg(Signal()));
    sideBox_->addItem(tr("Receiver with %1").arg(Slot()));
    idBox_->setEditable(true);
    idBox_->addItems({QStringLiteral("volume"), QStringLiteral("balance")});
    queuedBox_->setToolTip(tr("Only the side that is registered second decides."));
    SetUpTable(table_, {tr("Name"), tr("Control"), tr("Side"), tr("Queued")});
    table_->setAccessibleName(tr("Registrations"));
    CreateLayout();
    Connect();
    setFocusProxy(controls_.front());
    UpdateButtons();
}

void ConnectionsPage::AddControl(QAbstractSlider* control, QString const& name, QHBoxLayout* row)
{
    control->setAccessibleName(name);
    auto* const value = new QLabel(locale().toString(control->value()));
    value->setAlignment(Qt::AlignHCenter);
    // Connect this slot before any control is registered with ObjectsConnector. Then the timeline lists the change of a
    // control before the changes of its receivers, because Qt calls slots in the order of their connection.
    connect(control, &QAbstractSlider::valueChanged, this, [this, name, value](int number) {
        value->setText(locale().toString(number));
        timeline_->Add(name, tr("value %1").arg(value->text()));
    });

    auto* const box = new QGroupBox(name);
    auto* const column = new QVBoxLayout(box);
    column->addWidget(control, 1);
    column->addWidget(value);
    row->addWidget(box, 1);
    controls_.push_back(control);
    controlBox_->addItem(name);
}

QHBoxLayout* ConnectionsPage::NewControls()
{
    auto* const row = new QHBoxLayout;
    row->setSpacing(Spacing);
    AddControl(new QSlider(Qt::Horizontal), tr("Slider 1"), row);
    AddControl(new QSlider(Qt::Horizontal), tr("Slider 2"), row);
    AddControl(new QDial, tr("Dial 1"), row);
    AddControl(new QDial, tr("Dial 2"), row);
    return row;
}

QHBoxLayout* ConnectionsPage::NewForm()
{
    auto* const row = new QHBoxLayout;
    row->setSpacing(Spacing);
    row->addWidget(NewLabelFor(controlBox_, tr("&Control")));
    row->addWidget(controlBox_);
    row->addWidget(NewLabelFor(sideBox_, tr("&Side")));
    row->addWidget(sideBox_);
    row->addWidget(NewLabelFor(idBox_, tr("&Name")));
    row->addWidget(idBox_, 1);
    row->addWidget(queuedBox_);
    row->addWidget(registerButton_);
    return row;
}

void ConnectionsPage::CreateLayout()
{
    auto* const registrations = new QVBoxLayout;
    registrations->setSpacing(Spacing);
    registrations->addWidget(table_, 1);
    registrations->addWidget(unregisterButton_, 0, Qt::AlignLeft);

    auto* const lists = new QHBoxLayout;
    lists->setSpacing(Spacing);
    lists->addLayout(registrations, 1);
    lists->addWidget(timeline_, 1);

    auto* const column = new QVBoxLayout(this);
    SetUpPageLayout(column);
    column->addLayout(NewControls());
    column->addLayout(NewForm());
    column->addWidget(
        NewHint(tr("Every emitter of a name is connected to every receiver of that name, in whichever order they are "
                   "registered. Queued signals arrive in a later iteration of the event loop.")));
    column->addLayout(lists, 1);
}

void ConnectionsPage::Connect()
{
    connect(registerButton_, &QPushButton::clicked, this, [this] {
        Register({controlBox_->currentIndex(), sideBox_->currentIndex() == 0, idBox_->currentText(),
                  queuedBox_->isChecked()});
    });
    connect(unregisterButton_, &QPushButton::clicked, this, &ConnectionsPage::UnregisterSelected);
    connect(table_, &QTableWidget::itemSelectionChanged, this, &ConnectionsPage::UpdateButtons);
}

void ConnectionsPage::Register(Registration const& registration)
{
    QAbstractSlider* const control = controls_[static_cast<std::size_t>(registration.control)];
    if (registration.isEmitter) {
        ObjectsConnector::registerEmitter(registration.id, control, Signal(), registration.isQueued);
    } else {
        ObjectsConnector::registerReceiver(registration.id, control, Slot(), registration.isQueued);
    }
    registrations_.push_back(registration);

    int const row = table_->rowCount();
    table_->insertRow(row);
    table_->setItem(row, 0, NewCell(registration.id));
    table_->setItem(row, 1, NewCell(controlBox_->itemText(registration.control)));
    table_->setItem(row, 2, NewCell(registration.isEmitter ? tr("Emitter") : tr("Receiver")));
    table_->setItem(row, 3, NewCell(registration.isQueued ? tr("Yes") : tr("No")));
}

void ConnectionsPage::UnregisterSelected()
{
    Registration const registration = registrations_[static_cast<std::size_t>(table_->currentRow())];
    QAbstractSlider* const control = controls_[static_cast<std::size_t>(registration.control)];
    if (registration.isEmitter) {
        ObjectsConnector::unregisterEmitter(registration.id, control, Signal());
    } else {
        ObjectsConnector::unregisterReceiver(registration.id, control, Slot());
    }
    // A control can be registered several times under the same name and in the same role (emitter or receiver).
    // ObjectsConnector has removed all of these registrations. Remove all of their rows from the table.
    for (int row = table_->rowCount() - 1; row >= 0; --row) {
        auto const at = registrations_.begin() + row;
        if (at->control == registration.control && at->isEmitter == registration.isEmitter &&
            at->id == registration.id) {
            registrations_.erase(at);
            table_->removeRow(row);
        }
    }
}

void ConnectionsPage::UpdateButtons()
{
    unregisterButton_->setEnabled(!table_->selectedItems().empty());
}

void ConnectionsPage::ShowSample()
{
    QString const volume = QStringLiteral("volume");
    QString const balance = QStringLiteral("balance");
    Register({0, true, volume, false});
    Register({2, false, volume, false});
    Register({3, false, volume, true});
    Register({1, false, balance, false});
    Register({3, true, balance, false});
    controls_.front()->setValue(SampleValue);
    ScheduleSampleShown();
}

} // namespace Zelkor::Gallery
