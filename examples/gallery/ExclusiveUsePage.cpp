#include "ExclusiveUsePage.h"

#include "StatusLabel.h"
#include "Timeline.h"
#include "Widgets.h"

#include <Util/ExclusiveClient.h>

#include <QtWidgets/QFormLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QPushButton>

#include <algorithm>

namespace Zelkor::Gallery
{

ExclusiveUsePage::ExclusiveUsePage(QWidget* parent)
    : Page(parent)
    , timeline_(new Timeline)
{
    WatchDevice();
    auto* const players = new QHBoxLayout;
    players->setSpacing(Spacing);
    for (QString const& name : {tr("Preview"), tr("Editor"), tr("Recorder")}) {
        players->addWidget(NewPlayer(name), 1);
    }
    auto* const form = new QFormLayout;
    holderLabel_ = AddValueRow(form, tr("The device is held by"));

    auto* const column = new QVBoxLayout(this);
    SetUpPageLayout(column);
    column->addLayout(players);
    column->addLayout(form);
    column->addWidget(timeline_, 1);
    Update();
}

QGroupBox* ExclusiveUsePage::NewPlayer(QString const& name)
{
    auto* const box = new QGroupBox(name);
    auto* const client = new ExclusiveClient(&device_, box);
    auto* const state = new StatusLabel(tr("State of %1").arg(name));
    auto* const column = new QVBoxLayout(box);
    column->addWidget(state);

    auto const addButton = [&](QString const& text, QString const& toolTip, void (ExclusiveClient::*slot)()) {
        auto* const button = new QPushButton(text);
        button->setToolTip(toolTip);
        connect(button, &QPushButton::clicked, client, slot);
        column->addWidget(button);
        return button;
    };
    QPushButton* const use =
        addButton(tr("Use"), tr("Acquires the device. Its current holder loses it."), &ExclusiveClient::use);
    addButton(tr("Finish"), tr("Releases the device if this player holds it."), &ExclusiveClient::finalize);
    addButton(tr("Break"), tr("Takes the device away from its current holder and leaves it free."),
              &ExclusiveClient::breakAll);
    if (players_.empty()) {
        setFocusProxy(use);
    }

    players_.push_back({name, client, state});
    WatchClient(players_.back());
    return box;
}

void ExclusiveUsePage::WatchClient(Player const& player)
{
    auto const watch = [this, name = player.name, client = player.client](auto signal, char const* what, Tone tone) {
        connect(client, signal, this, [this, name, what, tone] { timeline_->Add(name, QLatin1String(what), tone); });
    };
    watch(&ExclusiveClient::acquired, "acquired()", Tone::Good);
    watch(&ExclusiveClient::released, "released()", Tone::Neutral);
    watch(&ExclusiveClient::intercepted, "intercepted()", Tone::Bad);
    watch(&ExclusiveClient::finished, "finished()", Tone::Neutral);
    watch(&ExclusiveClient::otherClientAppeared, "otherClientAppeared()", Tone::Caution);
}

void ExclusiveUsePage::WatchDevice()
{
    connect(&device_, &ExclusiveService::clientAboutToBeChanged, this, [this](QObject* from, QObject* to) {
        timeline_->Add(tr("Device"), QStringLiteral("clientAboutToBeChanged(%1, %2)").arg(NameOf(from), NameOf(to)));
    });
    connect(&device_, &ExclusiveService::clientChanged, this, [this](QObject* client) {
        timeline_->Add(tr("Device"), QStringLiteral("clientChanged(%1)").arg(NameOf(client)));
        Update();
    });
}

QString ExclusiveUsePage::NameOf(QObject const* client) const
{
    auto const found = std::find_if(players_.begin(), players_.end(),
                                    [client](Player const& player) { return player.client == client; });
    return found == players_.end() ? tr("nobody") : found->name;
}

void ExclusiveUsePage::Update()
{
    holderLabel_->Show(NameOf(device_.currentClient()));
    for (Player const& player : players_) {
        bool const isInUse = player.client->isInUse();
        player.state->Show(isInUse ? tr("Playing") : tr("Idle"), isInUse ? Tone::Good : Tone::Neutral);
    }
}

void ExclusiveUsePage::ShowSample()
{
    players_[0].client->use();
    players_[1].client->use();
    players_[1].client->finalize();
    players_[2].client->use();
    ScheduleSampleShown();
}

} // namespace Zelkor::Gallery
