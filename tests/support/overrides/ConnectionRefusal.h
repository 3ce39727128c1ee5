#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QObject>

#include <cstddef>
#include <vector>

namespace Zelkor::Testing
{

/// A connection that somebody asked Qt for by name.
struct ConnectionRequest
{
    QObject const* sender;
    QByteArray signal;
    QObject const* receiver;
    QByteArray slot;
    Qt::ConnectionType type;
};

/// Keeps the connections that this thread asks for by name while it lives, and lets Qt make the first \a allowed only.
class ConnectionRefusal
{
public:
    explicit ConnectionRefusal(std::size_t allowed = 0);
    ~ConnectionRefusal();
    Q_DISABLE_COPY_MOVE(ConnectionRefusal)

    /// Keeps \a request for the one that lives on this thread, if any, and returns whether Qt is to make it.
    static bool Allows(ConnectionRequest const& request);

    std::vector<ConnectionRequest> requests;

private:
    std::size_t allowed_;
};

} // namespace Zelkor::Testing
