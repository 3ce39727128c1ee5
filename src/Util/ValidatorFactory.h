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
/// For text that can still become an accepted address, the state is QValidator::Intermediate. Users can therefore type
/// an accepted address character by character.
///
/// Known restriction: some valid addresses are not accepted. In the domain, only the last label may begin with any
/// letter or digit. Each label before it must begin with a lower-case letter, a digit, an underscore, or the capital
/// letter A or Z. For example, the domain "Example.com" is rejected, but "example.com" is accepted.
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
