#pragma once

/// \file
/// The gallery's window.

#include <Base/IoPath.h>

#include <QtWidgets/QMainWindow>

#include <vector>

QT_BEGIN_NAMESPACE
class QListWidget;
class QStackedWidget;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Gallery
{

class Page;

/// A navigation list on the left and the page that is chosen in it on the right.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);

    /// Proposes \a folder on all pages.
    void SetFolder(ioPath const& folder);

    /// Turns to the page at \a index of Pages().
    void Turn(int index);
    Page* PageAt(int index) const;

Q_SIGNALS:
    /// The window was closed and no page is busy any more: destroying it does not block.
    void Ended();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void AddPages();
    void EndWhenIdle();

    QListWidget* navigation_;
    QStackedWidget* stack_;
    std::vector<Page*> pages_;
    bool isClosed_ = false;
};

} // namespace Gallery
} // namespace Zelkor
