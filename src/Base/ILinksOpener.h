#pragma once

/// \file
/// The interface through which the library's dialogs open links.

#include <Base/Export.h>

#include <QtCore/QString>

namespace Zelkor
{
namespace App
{

/// Opens links for the library's dialogs. Applications implement this interface, for example to warn the user before a
/// link is opened, or to open the link in a built-in browser.
class ZQTUTIL_EXPORT ILinksOpener
{
public:
    virtual ~ILinksOpener();

    /// Opens \a link. The library calls this function on the GUI thread.
    ///
    /// \param link  the target of the link, exactly as it is written in the text of the dialog
    virtual void OpenLink(QString const& link) = 0;
};

} // namespace App
} // namespace Zelkor
