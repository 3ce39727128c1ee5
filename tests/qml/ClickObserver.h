#pragma once

#include <Util/Model/SimpleModel/ISimpleModelObserver.h>

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QVariant>

namespace Zelkor::Testing
{

/// An observer of SimpleModel. QML code can create ClickObserver objects and register them in a model.
class ClickObserver : public QObject, public Util::ISimpleModelObserver
{
    Q_OBJECT
    Q_PROPERTY(QVariant observer READ Observer CONSTANT)

public:
    QVariant Observer() { return QVariant::fromValue<Util::ISimpleModelObserver*>(this); }

    void OnItemClicked(QString const& uid) override { Q_EMIT itemClicked(uid); }

Q_SIGNALS:
    void itemClicked(QString const& uid);
};

} // namespace Zelkor::Testing
