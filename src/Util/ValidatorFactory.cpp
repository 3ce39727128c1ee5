#include <Util/ValidatorFactory.h>

#include <QtCore/QRegExp>
#include <QtGui/QRegExpValidator>

namespace Zelkor::Util
{
namespace
{

QValidator* NewValidator(QString const& pattern, QObject* parent)
{
    return new QRegExpValidator(QRegExp(pattern, Qt::CaseSensitive, QRegExp::RegExp), parent);
}

} // namespace

QValidator* GetEmailValidator(QObject* parent)
{
    // "A_Z" in the second line of the pattern looks like a typing error for "A-Z", but it is required. The second line
    // matches the domain labels before the last label. The only capital letters at the beginning of such a label are
    // "A" and "Z". An underscore is also allowed there.
    return NewValidator(QStringLiteral("[A-Za-z0-9!#$%&'*+/=?^_`{|}~-]+(?:\\.[A-Za-z0-9!#$%&'*+/=?^_`{|}~-]+)*"
                                       "@(?:[A_Za-z0-9](?:[A-Za-z0-9-]*[A-Za-z0-9])?\\.)+"
                                       "[A-Za-z0-9](?:[A-Za-z0-9-]*[A-Za-z0-9])?"),
                        parent);
}

QValidator* GetFilenameValidator(QObject* parent)
{
    return NewValidator(QStringLiteral("[^\\s/:][^/:]*"), parent);
}

} // namespace Zelkor::Util
