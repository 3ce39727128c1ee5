#pragma once

/// \file
/// The page Exclusive use: three players, one device.

#include "Page.h"

#include <Util/ExclusiveService.h>

#include <vector>

class ExclusiveClient;

QT_BEGIN_NAMESPACE
class QGroupBox;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Gallery
{

class StatusLabel;
class Timeline;

class ExclusiveUsePage : public Page
{
    Q_OBJECT

public:
    explicit ExclusiveUsePage(QWidget* parent = nullptr);

    void ShowSample() override;

private:
    struct Player
    {
        QString name;
        ExclusiveClient* client;
        StatusLabel* state;
    };

    QGroupBox* NewPlayer(QString const& name);
    void WatchClient(Player const& player);
    void WatchDevice();
    QString NameOf(QObject const* client) const;
    void Update();

    ExclusiveService device_; // ends before the players, which are child objects
    std::vector<Player> players_;
    StatusLabel* holderLabel_;
    Timeline* timeline_;
};

} // namespace Gallery
} // namespace Zelkor
