#pragma once

#include <Util/Model/SimpleModel/SimpleModel.h>

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <utility>

namespace Zelkor::Testing
{

/// QML singleton that creates SimpleModel objects for the tests. QML code cannot create SimpleModel objects itself.
class Models : public QObject
{
    Q_OBJECT

public:
    Q_INVOKABLE static Zelkor::Util::SimpleModel* create(QStringList uids, QObject* parent)
    {
        auto titleOf = [](QString const& uid) { return QLatin1String("Title of ") + uid; };
        return Util::SimpleModel::Create(std::move(uids), titleOf, parent);
    }
};

} // namespace Zelkor::Testing
