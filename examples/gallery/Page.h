#pragma once

/// \file
/// What the main window asks of a page.

#include <Base/IoPath.h>

#include <QtWidgets/QDialog>

#include <memory>
#include <vector>

namespace Zelkor
{
namespace Gallery
{

/// A dialog of a page, for a picture named \a id.
struct SampleDialog
{
    char const* id;
    std::unique_ptr<QDialog> dialog;
};

/// A page of the gallery. One without background work needs to override nothing but ShowSample().
class Page : public QWidget
{
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// Proposes \a folder to the user, where the page works on a folder.
    virtual void SetFolder(ioPath const& folder);

    /// Fills the page with what a user would see at work, and emits SampleShown() from the event loop when it is
    /// complete.
    virtual void ShowSample() = 0;

    /// The dialogs that the page opens, filled with what a user would see.
    virtual std::vector<SampleDialog> SampleDialogs();

    /// Asks the page's work to end, as the window is about to go.
    virtual void Cancel();

    /// Whether destroying the page now would wait for work.
    virtual bool IsBusy() const;

Q_SIGNALS:
    void SampleShown();

    /// IsBusy() has turned false.
    void BecameIdle();

protected:
    /// Emits SampleShown() when the event loop turns next.
    void SampleIsComplete();
};

} // namespace Gallery
} // namespace Zelkor
