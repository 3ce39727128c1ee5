#include <Util/StringUtils.h>

namespace Zelkor::Util
{

QString Utf8ToQString(std::string const& utf8)
{
    return QString::fromUtf8(utf8.c_str());
}

std::string QStringToUtf8(QString const& text)
{
    return std::string(text.toUtf8().constData());
}

} // namespace Zelkor::Util
