#pragma once

/// \file
/// The main window of the gallery.

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

/// Shows a navigation list on the left and the selected page on the right.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);

    /// Sets \a folder on all pages that use a folder.
    void SetFolder(ioPath const& folder);

    /// Shows the page at \a index in Pages().
    void ShowPage(int index);

    /// Returns the page at \a index in Pages().
    Page* PageAt(int index) const;

Q_SIGNALS:
    /// Emitted after the window has been closed, as soon as no page is busy. From then on, the destructor of the window
    /// does not wait for background work.
    void ReadyToQuit();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void AddPages();
    void CheckReadyToQuit();

    QListWidget* navigation_;
    QStackedWidget* stack_;
    std::vector<Page*> pages_;
    bool isClosed_ = false;
};

} // namespace Gallery
} // namespace Zelkor
