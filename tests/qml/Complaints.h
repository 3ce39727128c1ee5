#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>

namespace Zelkor::Testing
{

/// What Qt, QML among it, and the library warned of: a singleton of the QML tests. State is the program's, as each test
/// file has an engine of its own.
class Complaints : public QObject
{
    Q_OBJECT

public:
    /// Starts to listen, and comes before QtTest's own handler, which is installed when the first test starts.
    Q_INVOKABLE static void watch();

    /// The complaints since the last call, one a line.
    Q_INVOKABLE static QString take();
};

} // namespace Zelkor::Testing
