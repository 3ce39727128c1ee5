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

/// A dialog of a page for the screenshots. #id is its name in file names.
struct SampleDialog
{
    char const* id;
    std::unique_ptr<QDialog> dialog;
};

/// A page of the gallery. A page without background work needs to override only ShowSample().
class Page : public QWidget
{
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// Sets \a folder as the folder to work on. Pages that do not use a folder ignore it.
    virtual void SetFolder(ioPath const& folder);

    /// Fills the page with sample data. SampleShown() is emitted from the event loop when the data is complete.
    virtual void ShowSample() = 0;

    /// Returns the dialogs that the page opens, filled with sample data.
    virtual std::vector<SampleDialog> SampleDialogs();

    /// Cancels the background work of the page. The main window calls it when it is closed.
    virtual void Cancel();

    /// Returns true if the destructor would wait for background work.
    virtual bool IsBusy() const;

Q_SIGNALS:
    /// Emitted when the sample data of ShowSample() is complete.
    void SampleShown();

    /// Emitted when IsBusy() has changed to false.
    void BecameIdle();

protected:
    /// Queues the emission of SampleShown().
    void ScheduleSampleShown();
};

} // namespace Gallery
} // namespace Zelkor
