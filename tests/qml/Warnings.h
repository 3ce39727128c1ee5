#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>

namespace Zelkor::Testing
{

/// Singleton of the QML tests that collects the warnings of Qt, QML and the library. Each test file has its own engine
/// and instance, but all instances share one list.
class Warnings : public QObject
{
    Q_OBJECT

public:
    /// Installs the message handler. Test cases call it again, because QtTest installs its own handler later.
    Q_INVOKABLE static void collect();

    /// Returns the warnings since the last call, one per line.
    Q_INVOKABLE static QString take();
};

} // namespace Zelkor::Testing
