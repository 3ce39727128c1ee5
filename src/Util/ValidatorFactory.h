#pragma once

/// \file
/// Validators for line edits. Call these functions on the GUI thread.

#include <Util/Export.h>

#include <QtCore/QtGlobal>

QT_BEGIN_NAMESPACE
class QObject;
class QValidator;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Util
{

/// Creates a validator for e-mail addresses in the dot-atom form (RFC 5322, section 3.4.1).
///
/// The state is Intermediate for text that can still become an address, so the user can type every valid address. Each
/// label of the domain except the last may begin with an underscore, a digit, a lower-case letter, or the capital
/// letters A and Z. Other capital letters are rejected at the beginning of these labels.
///
/// \param parent  the owner of the validator; if null, the caller owns it
/// \return the new validator
ZQTUTIL_EXPORT QValidator* GetEmailValidator(QObject* parent);

/// Creates a validator for file names. A valid name is not empty, contains neither "/" nor ":", and does not begin with
/// white space.
///
/// \param parent  the owner of the validator; if null, the caller owns it
/// \return the new validator
ZQTUTIL_EXPORT QValidator* GetFilenameValidator(QObject* parent);

} // namespace Util
} // namespace Zelkor
