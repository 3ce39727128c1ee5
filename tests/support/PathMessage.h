#pragma once

#include <Util/FileUtils.h>

#include <QtCore/QString>

namespace Zelkor::Testing
{

/// Returns the message for the user that IsThisPathValid() sets for \a validity. Returns an empty string if \a validity
/// is Valid, because IsThisPathValid() then sets no message.
inline QString PathMessage(Util::PathValidity validity)
{
    switch (validity) {
    case Util::PathValidity::Valid:
        break;
    case Util::PathValidity::Empty:
        return QStringLiteral("Destination folder path cannot be empty");
    case Util::PathValidity::Relative:
        return QStringLiteral("Destination folder path must be absolute");
    case Util::PathValidity::NotWritable:
        return QStringLiteral("Can't access the specified destination folder");
    case Util::PathValidity::TrailingSpace:
        return QStringLiteral("Last letter in folder name mustn't be space");
    case Util::PathValidity::CannotCreate:
        return QStringLiteral("The specified destination is not available");
    }
    return QString();
}

} // namespace Zelkor::Testing
