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
    // "A_Z" is not a typing error for "A-Z": this set is required. It accepts an underscore at the beginning of a
    // label, and no capital letters except A and Z.
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
