#pragma once

/// \file
/// How an application opens the links in the library's dialogs.

#include <Base/Export.h>

#include <QtCore/QString>

namespace Zelkor
{
namespace App
{

/// Opens links. Implemented by the application, which may count them, warn, or show its own browser.
class ZQTUTIL_EXPORT ILinksOpener
{
public:
    virtual ~ILinksOpener();

    /// Opens \a link, as the text of the dialog spells it. Called on the GUI thread.
    virtual void OpenLink(QString const& link) = 0;
};

} // namespace App
} // namespace Zelkor
