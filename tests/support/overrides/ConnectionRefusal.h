#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QObject>

#include <cstddef>
#include <vector>

namespace Zelkor::Testing
{

/// The arguments of one call of the QObject::connect() overload that takes the signal and the slot as strings.
struct ConnectionRequest
{
    QObject const* sender;
    QByteArray signal;
    QObject const* receiver;
    QByteArray slot;
    Qt::ConnectionType type;
};

/// While a ConnectionRefusal exists, it records all calls of QObject::connect() on the thread that created it, and
/// makes these calls fail. Only the overload that takes the signal and the slot as strings is affected. Each thread may
/// have at most one ConnectionRefusal at a time.
class ConnectionRefusal
{
public:
    /// \param allowed  The number of calls that do not fail: they are forwarded to Qt. All later calls fail.
    explicit ConnectionRefusal(std::size_t allowed = 0);
    ~ConnectionRefusal();
    Q_DISABLE_COPY_MOVE(ConnectionRefusal)

    /// If the calling thread has a ConnectionRefusal, adds \a request to its recorded calls. Returns true if the call
    /// must be forwarded to Qt, and false if it must fail.
    static bool Allows(ConnectionRequest const& request);

    std::vector<ConnectionRequest> requests; ///< All recorded calls, including the calls that failed.

private:
    std::size_t allowed_;
};

} // namespace Zelkor::Testing
