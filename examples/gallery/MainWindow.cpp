#include "MainWindow.h"

#include "Pages.h"

#include <Util/SpontaneousDialog.h>

#include <QtGui/QCloseEvent>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QStackedWidget>

#include <algorithm>

namespace Zelkor::Gallery
{
namespace
{

constexpr QSize DefaultSize(1000, 640);
constexpr int Margin = 12;
constexpr qreal TitleScale = 1.4;

QWidget* WithTitle(Page* page, QString const& title)
{
    auto* const label = new QLabel(title);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * TitleScale);
    font.setBold(true);
    label->setFont(font);

    auto* const framed = new QWidget;
    auto* const column = new QVBoxLayout(framed);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Margin);
    column->addWidget(label);
    column->addWidget(page, 1);
    framed->setFocusProxy(page);
    return framed;
}

} // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent)
    , navigation_(new QListWidget)
    , stack_(new QStackedWidget)
{
    Util::SpontaneousDialog::SetMainWindow(this);
    setWindowTitle(tr("ZQtUtil Gallery"));
    navigation_->setAccessibleName(tr("Pages"));

    auto* const content = new QWidget;
    auto* const row = new QHBoxLayout(content);
    row->setContentsMargins(Margin, Margin, Margin, Margin);
    row->setSpacing(Margin);
    row->addWidget(navigation_);
    row->addWidget(stack_, 1);
    setCentralWidget(content);
    resize(DefaultSize);

    AddPages();
    connect(navigation_, &QListWidget::currentRowChanged, stack_, &QStackedWidget::setCurrentIndex);
    ShowPage(0);
    stack_->currentWidget()->setFocus();
}

void MainWindow::AddPages()
{
    for (PageInfo const& info : Pages()) {
        Page* const page = pages_.emplace_back(info.create());
        auto* const item = new QListWidgetItem(PageTitle(info), navigation_);
        item->setSizeHint(QSize(fontMetrics().horizontalAdvance(item->text()), fontMetrics().height() + Margin));
        stack_->addWidget(WithTitle(page, PageTitle(info)));
        connect(page, &Page::BecameIdle, this, &MainWindow::CheckReadyToQuit);
    }
    navigation_->setFixedWidth(navigation_->sizeHintForColumn(0) + 2 * Margin);
}

void MainWindow::SetFolder(ioPath const& folder)
{
    for (Page* const page : pages_) {
        page->SetFolder(folder);
    }
}

void MainWindow::ShowPage(int index)
{
    navigation_->setCurrentRow(index);
}

Page* MainWindow::PageAt(int index) const
{
    return pages_[static_cast<std::size_t>(index)];
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    isClosed_ = true;
    for (Page* const page : pages_) {
        page->Cancel();
    }
    event->accept();
    CheckReadyToQuit();
}

void MainWindow::CheckReadyToQuit()
{
    bool const isBusy = std::any_of(pages_.begin(), pages_.end(), [](Page const* page) { return page->IsBusy(); });
    if (isClosed_ && !isBusy) {
        isClosed_ = false;
        Q_EMIT ReadyToQuit();
    }
}

} // namespace Zelkor::Gallery
