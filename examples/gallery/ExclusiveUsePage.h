#pragma once

/// \file
/// The Exclusive use page: three players share one device.

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

    // The clients of device_ are child objects of the page. Data members are destroyed before child objects, so device_
    // is destroyed before its clients. ExclusiveService and its clients support this order.
    ExclusiveService device_;
    std::vector<Player> players_;
    StatusLabel* holderLabel_;
    Timeline* timeline_;
};

} // namespace Gallery
} // namespace Zelkor
