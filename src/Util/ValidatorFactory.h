#pragma once

/// \file
/// Ready-made validators for line edits.

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

/// A new validator for e-mail addresses (the dot-atom form of RFC 5322, section 3.4.1), owned by \a parent, or by the
/// caller when that is null. GUI thread.
///
/// What could still become an address is intermediate, so every address can be typed. The labels of the domain but the
/// last may begin with an underscore, and with no capital letter but A and Z.
ZQTUTIL_EXPORT QValidator* GetEmailValidator(QObject* parent);

/// A new validator for names of files, owned by \a parent, or by the caller when that is null. GUI thread.
///
/// A name holds neither "/" nor ":" and does not begin with white space.
ZQTUTIL_EXPORT QValidator* GetFilenameValidator(QObject* parent);

} // namespace Util
} // namespace Zelkor
