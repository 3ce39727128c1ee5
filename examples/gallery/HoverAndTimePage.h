#pragma once

/// \file
/// The Hover and time page. It shows tiles that share their hover state. It also shows a play bar, and widgets that
/// depend on the time of the play bar.

#include "Page.h"

#include <QtCore/QElapsedTimer>
#include <QtGui/QTextDocument>

QT_BEGIN_NAMESPACE
class QGroupBox;
class QLabel;
class QPushButton;
class QSlider;
class QTimer;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Util
{
class PropertyTimeSwitcher;
class TimeUpdater;
} // namespace Util
namespace Gallery
{

class HoverAndTimePage : public Page
{
    Q_OBJECT

public:
    explicit HoverAndTimePage(QWidget* parent = nullptr);

    void ShowSample() override;
    void Cancel() override;

private:
    QGroupBox* NewTiles();
    QGroupBox* NewPlayBar();
    QLabel* NewClock(Util::TimeUpdater*& updater, bool isReverse);
    void SetTime(int time);
    void SetPlaying(bool isOn);

    QTextDocument elapsedText_;
    QTextDocument remainingText_;
    std::vector<QLabel*> tiles_;
    QSlider* slider_;
    QPushButton* playButton_;
    QTimer* timer_;
    QElapsedTimer clock_;
    int playedFrom_ = 0;
    Util::PropertyTimeSwitcher* switcher_;
    Util::TimeUpdater* elapsed_;
    Util::TimeUpdater* remaining_;
};

} // namespace Gallery
} // namespace Zelkor
