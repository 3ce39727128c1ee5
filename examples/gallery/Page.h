#pragma once

/// \file
/// The base class of the gallery's pages.

#include <Base/IoPath.h>

#include <QtWidgets/QDialog>

#include <memory>
#include <vector>

namespace Zelkor
{
namespace Gallery
{

/// A dialog for the gallery's screenshots. The file names of the screenshots start with #id.
struct SampleDialog
{
    char const* id;
    std::unique_ptr<QDialog> dialog;
};

/// The base class of the gallery's pages. A page without background work needs to override only ShowSample().
class Page : public QWidget
{
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// Sets the folder that the page shows or checks. Pages that do not use a folder ignore \a folder.
    virtual void SetFolder(ioPath const& folder);

    /// Fills the page with sample data. When the data is complete, SampleShown() is emitted from the event loop.
    virtual void ShowSample() = 0;

    /// Creates the dialogs that the page can open, fills them with sample data and returns them.
    virtual std::vector<SampleDialog> SampleDialogs();

    /// Cancels the background work of the page. The main window calls this function when the user closes the window.
    virtual void Cancel();

    /// Returns true while the destructor of the page would have to wait for background work.
    virtual bool IsBusy() const;

Q_SIGNALS:
    /// Emitted when the sample data of ShowSample() is complete.
    void SampleShown();

    /// Emitted when IsBusy() has changed to false.
    void BecameIdle();

protected:
    /// Queues the emission of SampleShown(), so that the event loop emits it later.
    void ScheduleSampleShown();
};

} // namespace Gallery
} // namespace Zelkor
