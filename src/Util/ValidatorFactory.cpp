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
    // "A_Z" is meant: a label of the domain may begin with an underscore, and with no other capital than these two.
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
