#pragma once

/// \file
/// A list of items, by identifier, for views and QML.

#include <Util/Export.h>
#include <Util/Model/SimpleModel/ISimpleModelObserver.h>

#include <QtCore/QAbstractListModel>
#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QModelIndex>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>

#include <functional>
#include <memory>

namespace Zelkor
{
namespace Util
{

/// A fixed list of items for views and QML: identifiers (uids), each with a title of the application's choice and an
/// icon path made of the uid. Clicks are written back to the model, which tells its observers.
///
/// \code
/// QStringList const uids{QStringLiteral("video_trim"), QStringLiteral("audio")};
/// auto* const model = SimpleModel::Create(uids, TitleOf, this);
/// model->setData(QModelIndex(), QVariant::fromValue<ISimpleModelObserver*>(this), SimpleModel::RegisterObserver);
/// \endcode
///
/// \code{.qml}
/// delegate: ToolButton { text: Title; icon.source: IconPath; onClicked: model.Click = true }
/// \endcode
///
/// **When not to use it:** for items that come, go or change; nothing here does, so no change is ever signalled.
///
/// **Threads.** A model is used on the thread it lives on, normally the GUI thread. Observers are borrowed: they are
/// unregistered before they end.
class ZQTUTIL_EXPORT SimpleModel : public QAbstractListModel
{
    Q_OBJECT

public:
    /// What the items offer, and what can be written.
    enum Role {
        Uid = Qt::UserRole + 1, ///< reads the uid
        Title,                  ///< reads what the title getter returns for the uid
        IconPath,               ///< reads the URL of the icon: "qrc:/icons/video/trim.png" for the uid video_trim
        Click,                  ///< written to an item: it was clicked, whatever the value
        RegisterObserver,       ///< written to no item: the value carries an `ISimpleModelObserver*` to register
        UnregisterObserver      ///< written to no item: the value carries the observer to forget
    };
    Q_ENUM(Role)

    /// A new model of \a uids, one row each, owned by \a parent, or by the caller when there is none. \a titleGetter
    /// returns the title of a uid; it is called each time a title is read.
    static SimpleModel* Create(QStringList&& uids, std::function<QString(QString const&)>&& titleGetter,
                               QObject* parent = nullptr);

    /// As Create().
    SimpleModel(QStringList&& uids, std::function<QString(QString const&)>&& titleGetter, QObject* parent = nullptr);

    ~SimpleModel() override;

    /// The number of uids; 0 below an item.
    int rowCount(QModelIndex const& parent = QModelIndex()) const override;

    /// What \a role shows of the row of \a index: Uid, Title or IconPath; an invalid value for any other role.
    ///
    /// The row must be below rowCount(): it is not tested. Title throws `std::bad_function_call` when there is no
    /// title getter.
    QVariant data(QModelIndex const& index, int role = Qt::DisplayRole) const override;

    /// Takes a click, an observer, or nothing: false when there is nothing to do for \a role.
    ///
    /// With an item, Click calls ISimpleModelObserver::OnItemClicked() of every observer, in the order of their
    /// registration; \a value is ignored, and no change is signalled. With an invalid \a index, RegisterObserver and
    /// UnregisterObserver take the observer that \a value carries; one that is null, or there already, or not there, is
    /// ignored, and the answer still true.
    bool setData(QModelIndex const& index, QVariant const& value, int role = Qt::EditRole) override;

    /// "Uid", "Title", "IconPath" and "Click", and none of the standard roles.
    QHash<int, QByteArray> roleNames() const override;

private:
    class Impl;
    std::unique_ptr<Impl> const impl_;
};

} // namespace Util
} // namespace Zelkor
