#include <Util/ByteArrayUtils.h>

#include <Base/Throw.h>

#include <limits>

namespace Zelkor::Util
{

QByteArray VectorByteToQByteArray(std::vector<unsigned char> const& bytes)
{
    if (bytes.empty()) {
        return QByteArray();
    }
    if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        ZELKOR_THROW(std::length_error("Too many bytes for a QByteArray"));
    }
    return QByteArray(reinterpret_cast<char const*>(bytes.data()), static_cast<int>(bytes.size()));
}

std::vector<unsigned char> QByteArrayToVectorByte(QByteArray const& array)
{
    return std::vector<unsigned char>(array.cbegin(), array.cend());
}

} // namespace Zelkor::Util
