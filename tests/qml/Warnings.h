#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>

namespace Zelkor::Testing
{

/// QML singleton that collects the warnings of Qt, QML and the library. Each test file has its own QML engine and
/// therefore its own instance of Warnings, but all instances share one list of warnings.
class Warnings : public QObject
{
    Q_OBJECT

public:
    /// Installs the message handler that collects Qt's warnings. main() calls this function first. QtTest replaces the
    /// message handler before it runs a test case, so each test case must call this function again.
    Q_INVOKABLE static void collect();

    /// Returns the collected warnings, one per line, and clears the list.
    Q_INVOKABLE static QString take();
};

} // namespace Zelkor::Testing
