#pragma once

/// \file
/// Conversions of byte arrays between Qt and the standard library. These functions may be called on any thread.

#include <Util/Export.h>

#include <QtCore/QByteArray>

#include <vector>

namespace Zelkor
{
namespace Util
{

/// Returns a copy of \a bytes. If \a bytes is empty, returns a default-constructed `QByteArray` without an
/// allocation.
///
/// Throws `std::length_error` if \a bytes has more elements than the maximum value of `int`.
ZQTUTIL_EXPORT QByteArray VectorByteToQByteArray(std::vector<unsigned char> const& bytes);

/// Returns a copy of all bytes of \a array, including NUL bytes.
ZQTUTIL_EXPORT std::vector<unsigned char> QByteArrayToVectorByte(QByteArray const& array);

} // namespace Util
} // namespace Zelkor
