#include "HoverAndTimePage.h"

#include "Widgets.h"

#include <Util/HoverGroup.h>
#include <Util/PropertyTimeSwitcher.h>
#include <Util/TimeUpdater.h>

#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>

namespace Zelkor::Gallery
{
namespace
{

// Times on the play bar, in milliseconds.
constexpr int Length = 60000;
constexpr int CaptionStart = 10000;
constexpr int CaptionEnd = 25000;
constexpr int Step = 40;
constexpr int SampleTime = 17000;

constexpr int Tiles = 4;

} // namespace

HoverAndTimePage::HoverAndTimePage(QWidget* parent)
    : Page(parent)
{
    auto* const column = new QVBoxLayout(this);
    SetUpPageLayout(column);
    column->addWidget(NewTiles());
    column->addWidget(NewPlayBar());
    column->addStretch();
    SetTime(0);
    setFocusProxy(playButton_);
}

QGroupBox* HoverAndTimePage::NewTiles()
{
    auto* const box = new QGroupBox(tr("Tiles that share their hover state"));
    auto* const group = new Util::HoverGroup(box);
    auto* const row = new QHBoxLayout(box);
    row->setSpacing(Spacing);
    for (int i = 1; i <= Tiles; ++i) {
        auto* const tile = new QLabel(tr("Scene %1").arg(i));
        tile->setObjectName(QStringLiteral("tile"));
        tile->setAlignment(Qt::AlignCenter);
        group->addItem(tile);
        row->addWidget(tile);
        tiles_.push_back(tile);
    }
    return box;
}

QLabel* HoverAndTimePage::NewClock(Util::TimeUpdater*& updater, bool isReverse)
{
    QTextDocument* const document = isReverse ? &remainingText_ : &elapsedText_;
    updater = new Util::TimeUpdater(0, 0, Length, QStringLiteral("m:ss.zzz"), document, isReverse);
    auto* const label = new QLabel;
    label->setAccessibleName(isReverse ? tr("Remaining") : tr("Elapsed"));
    connect(document, &QTextDocument::contentsChanged, label,
            [label, document] { label->setText(document->toPlainText()); });
    return label;
}

QGroupBox* HoverAndTimePage::NewPlayBar()
{
    auto* const box = new QGroupBox(tr("Widgets that follow the time of a film"));
    slider_ = new QSlider(Qt::Horizontal);
    slider_->setRange(0, Length);
    slider_->setAccessibleName(tr("Time"));
    playButton_ = new QPushButton(tr("&Play"));
    playButton_->setCheckable(true);
    timer_ = new QTimer(this);
    timer_->setInterval(Step);

    auto* const caption =
        new QLabel(tr("This caption is enabled from 10 s to 25 s: its property “enabled” is switched."));
    caption->setEnabled(false);
    switcher_ = new Util::PropertyTimeSwitcher("enabled", false, caption);
    switcher_->setRange(CaptionStart, CaptionEnd, true);

    auto* const bar = new QHBoxLayout;
    bar->setSpacing(Spacing);
    bar->addWidget(playButton_);
    bar->addWidget(NewClock(elapsed_, false));
    bar->addWidget(slider_, 1);
    bar->addWidget(NewClock(remaining_, true));
    auto* const column = new QVBoxLayout(box);
    column->setSpacing(Spacing);
    column->addLayout(bar);
    column->addWidget(caption);

    connect(slider_, &QSlider::valueChanged, this, &HoverAndTimePage::SetTime);
    connect(slider_, &QSlider::sliderMoved, this, [this] { SetPlaying(playButton_->isChecked()); });
    connect(playButton_, &QPushButton::toggled, this, &HoverAndTimePage::SetPlaying);
    connect(timer_, &QTimer::timeout, this, [this] {
        slider_->setValue(playedFrom_ + static_cast<int>(clock_.elapsed()));
        if (slider_->value() == Length) {
            playButton_->setChecked(false);
        }
    });
    return box;
}

void HoverAndTimePage::SetTime(int time)
{
    switcher_->setCurrentTime(time);
    elapsed_->setCurrentTime(time);
    remaining_->setCurrentTime(time);
}

void HoverAndTimePage::SetPlaying(bool isOn)
{
    if (!isOn) {
        timer_->stop();
        return;
    }
    playedFrom_ = slider_->value() == Length ? 0 : slider_->value();
    clock_.start();
    timer_->start();
}

void HoverAndTimePage::Cancel()
{
    playButton_->setChecked(false);
}

void HoverAndTimePage::ShowSample()
{
    slider_->setValue(SampleTime);
    QEvent enter(QEvent::Enter);
    QApplication::sendEvent(tiles_.front(), &enter);
    ScheduleSampleShown();
}

} // namespace Zelkor::Gallery
