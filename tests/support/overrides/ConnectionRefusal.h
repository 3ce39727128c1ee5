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

/// Records the calls to QObject::connect() and makes them fail. A ConnectionRefusal object affects only calls on the
/// thread that created the object, and only the overload that takes the signal and the slot as strings. Each thread may
/// have at most one ConnectionRefusal at a time. The destructor restores the normal behaviour of QObject::connect().
class ConnectionRefusal
{
public:
    /// \param allowed  The number of calls that are forwarded to Qt. All later calls fail.
    explicit ConnectionRefusal(std::size_t allowed = 0);
    ~ConnectionRefusal();
    Q_DISABLE_COPY_MOVE(ConnectionRefusal)

    /// Adds \a request to the member \c requests of the calling thread's ConnectionRefusal, if the thread has one.
    /// Returns true if QObject::connect() must forward the call to Qt. Returns false if QObject::connect() must fail.
    static bool Allows(ConnectionRequest const& request);

    std::vector<ConnectionRequest> requests; ///< All recorded calls, including the calls that failed.

private:
    std::size_t allowed_;
};

} // namespace Zelkor::Testing
