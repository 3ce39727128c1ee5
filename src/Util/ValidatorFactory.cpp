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
    // "A_Z" looks like a typing error for "A-Z", but it is required. A domain label that is not the last one may begin
    // with an underscore or with the capital letters A and Z. It may not begin with another capital letter.
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
