#pragma once

/// \file
/// The interface through which the library's dialogs open links.

#include <Base/Export.h>

#include <QtCore/QString>

namespace Zelkor
{
namespace App
{

/// Opens links for the library's dialogs. The application implements it, for example to warn the user or to show its
/// own browser.
class ZQTUTIL_EXPORT ILinksOpener
{
public:
    virtual ~ILinksOpener();

    /// Opens \a link. The library calls this function on the GUI thread.
    ///
    /// \param link  the link, unchanged from the text of the dialog
    virtual void OpenLink(QString const& link) = 0;
};

} // namespace App
} // namespace Zelkor
