#include <Util/Model/SimpleModel/SimpleModel.h>
#include <Util/ObjectsConnector.h>

#include <QtQml/QJSEngine>
#include <QtQml/QQmlEngine>
#include <QtQml/QQmlExtensionPlugin>

namespace Zelkor::Util
{

/// The plugin of the QML module `Zelkor.Util 1.0`.
class ZQtUtilQmlPlugin : public QQmlExtensionPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QQmlExtensionInterface_iid)

public:
    void registerTypes(char const* uri) override
    {
        qmlRegisterSingletonType<ObjectsConnector>(
            uri, 1, 0, "ObjectsConnector", [](QQmlEngine*, QJSEngine*) -> QObject* { return new ObjectsConnector; });
        qmlRegisterUncreatableType<SimpleModel>(uri, 1, 0, "SimpleModel",
                                                QStringLiteral("A SimpleModel is made in C++, with its items"));
    }
};

} // namespace Zelkor::Util

#include "ZQtUtilQmlPlugin.moc"
