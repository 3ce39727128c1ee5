#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QObject>

#include <cstddef>
#include <vector>

namespace Zelkor::Testing
{

/// The arguments of a call of the QObject::connect() overload that takes signatures as text.
struct ConnectionRequest
{
    QObject const* sender;
    QByteArray signal;
    QObject const* receiver;
    QByteArray slot;
    Qt::ConnectionType type;
};

/// Makes QObject::connect() fail while an object of this class exists. Affects only the overload that takes signatures
/// as text, and only calls on the thread that created the object. The object records these calls. Only one
/// object of this class may exist on a thread at a time.
class ConnectionRefusal
{
public:
    /// \param allowed  The number of calls that reach Qt. All later calls fail.
    explicit ConnectionRefusal(std::size_t allowed = 0);
    ~ConnectionRefusal();
    Q_DISABLE_COPY_MOVE(ConnectionRefusal)

    /// If this thread has a ConnectionRefusal, records \a request in it. Returns true if the call may reach Qt.
    static bool Allows(ConnectionRequest const& request);

    std::vector<ConnectionRequest> requests; ///< All recorded calls, including the calls that failed.

private:
    std::size_t allowed_;
};

} // namespace Zelkor::Testing
