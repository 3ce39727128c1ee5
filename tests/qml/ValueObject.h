#pragma once

#include <Util/ObjectsConnector.h>

#include <QtCore/QObject>
#include <QtCore/QString>

namespace Zelkor::Testing
{

/// A C++ object with a signal and a slot, for tests that connect C++ objects and QML objects.
class ValueObject : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int value READ Value WRITE setValue NOTIFY valueChanged)

public:
    int Value() const { return value_; }

    /// Registers this object from C++ as an emitter with the identifier \a ID.
    Q_INVOKABLE void registerAsEmitter(QString const& ID)
    {
        Util::ObjectsConnector::registerEmitter(ID, this, QStringLiteral("valueChanged(int)"));
    }

public Q_SLOTS:
    void setValue(int value)
    {
        if (value != value_) {
            value_ = value;
            Q_EMIT valueChanged(value);
        }
    }

Q_SIGNALS:
    void valueChanged(int value);

private:
    int value_ = 0;
};

} // namespace Zelkor::Testing
