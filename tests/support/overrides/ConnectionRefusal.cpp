// Replaces the overload of QObject::connect() that takes the signal and the slot as strings. Qt has no hook to make
// this function fail for valid signatures.

#include <support/overrides/ConnectionRefusal.h>

#include <support/overrides/NextFunction.h>

namespace Zelkor::Testing
{
namespace
{

thread_local ConnectionRefusal* current = nullptr;

} // namespace

ConnectionRefusal::ConnectionRefusal(std::size_t allowed)
    : allowed_(allowed)
{
    current = this;
}

ConnectionRefusal::~ConnectionRefusal()
{
    current = nullptr;
}

bool ConnectionRefusal::Allows(ConnectionRequest const& request)
{
    if (!current) {
        return true;
    }
    current->requests.push_back(request);
    return current->requests.size() <= current->allowed_;
}

} // namespace Zelkor::Testing

QMetaObject::Connection QObject::connect(QObject const* sender, char const* signal, QObject const* receiver,
                                         char const* member, Qt::ConnectionType type)
{
    if (!Zelkor::Testing::ConnectionRefusal::Allows({sender, signal, receiver, member, type})) {
        return QMetaObject::Connection();
    }
    using Connect =
        QMetaObject::Connection (*)(QObject const*, char const*, QObject const*, char const*, Qt::ConnectionType);
    static auto const next =
        Zelkor::Testing::NextFunction<Connect>("_ZN7QObject7connectEPKS_PKcS1_S3_N2Qt14ConnectionTypeE");
    return next(sender, signal, receiver, member, type);
}
