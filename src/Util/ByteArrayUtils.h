#pragma once

/// \file
/// Bytes between Qt and the standard library.

#include <Util/Export.h>

#include <QtCore/QByteArray>

#include <vector>

namespace Zelkor
{
namespace Util
{

/// A copy of all \a bytes; for an empty vector the shared empty array, without an allocation.
///
/// Throws `std::length_error` for more bytes than a `QByteArray` holds (2 GiB). Any thread.
ZQTUTIL_EXPORT QByteArray VectorByteToQByteArray(std::vector<unsigned char> const& bytes);

/// A copy of the `size()` bytes of \a array, NUL bytes included. Any thread.
ZQTUTIL_EXPORT std::vector<unsigned char> QByteArrayToVectorByte(QByteArray const& array);

} // namespace Util
} // namespace Zelkor
