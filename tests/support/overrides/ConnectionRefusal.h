#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QObject>

#include <cstddef>
#include <vector>

namespace Zelkor::Testing
{

/// The arguments of a call of QObject::connect() with signatures as text.
struct ConnectionRequest
{
    QObject const* sender;
    QByteArray signal;
    QObject const* receiver;
    QByteArray slot;
    Qt::ConnectionType type;
};

/// While an object of this class exists, records the calls of QObject::connect() with signatures as text on this
/// thread, and lets all calls after the first ones fail. Only one object may exist on a thread at a time.
class ConnectionRefusal
{
public:
    /// \param allowed  number of calls that reach Qt
    explicit ConnectionRefusal(std::size_t allowed = 0);
    ~ConnectionRefusal();
    Q_DISABLE_COPY_MOVE(ConnectionRefusal)

    /// Records \a request in the object of this thread, if any. Returns true if the call may reach Qt.
    static bool Allows(ConnectionRequest const& request);

    std::vector<ConnectionRequest> requests; ///< All recorded calls, including those that failed.

private:
    std::size_t allowed_;
};

} // namespace Zelkor::Testing
