#pragma once

/// \file
/// A list model with fixed items for views and QML.

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

/// A list model with fixed items for views and QML. Each item has an identifier (uid), a title that the application
/// supplies, and an icon path that is derived from the uid. A view calls setData() to report a click, and the model
/// then notifies its observers.
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
/// **When not to use it.** The items cannot be added, removed or changed, and the model emits no change signals.
///
/// **Threads.** Use the model on its own thread, normally the GUI thread.
///
/// **Ownership.** The model does not own its observers. Unregister an observer before it is destroyed.
class ZQTUTIL_EXPORT SimpleModel : public QAbstractListModel
{
    Q_OBJECT

public:
    /// The roles of the items. data() supports the roles marked "read", and setData() supports the roles marked
    /// "write".
    enum Role {
        Uid = Qt::UserRole + 1, ///< read: the identifier (uid) of the item
        Title,                  ///< read: the title that the title getter returns for the uid of the item
        IconPath,               ///< read: the icon URL; "qrc:/icons/video/trim.png" for the uid "video_trim"
        Click,                  ///< write with a valid index: reports a click on the item; the value is ignored
        RegisterObserver,       ///< write with an invalid index: registers the `ISimpleModelObserver*` in the value
        UnregisterObserver      ///< write with an invalid index: unregisters the `ISimpleModelObserver*` in the value
    };
    Q_ENUM(Role)

    /// Creates a model on the heap.
    ///
    /// \param uids         the identifiers of the items, one for each row
    /// \param titleGetter  returns the title of the item with a given uid. It is called whenever a title is read.
    /// \param parent       the owner of the model. If it is null, the caller owns the model.
    static SimpleModel* Create(QStringList&& uids, std::function<QString(QString const&)>&& titleGetter,
                               QObject* parent = nullptr);

    /// Creates a model. The parameters have the same meaning as in Create().
    SimpleModel(QStringList&& uids, std::function<QString(QString const&)>&& titleGetter, QObject* parent = nullptr);

    ~SimpleModel() override;

    /// Returns the number of items. Returns 0 if \a parent is a valid index, because items have no children.
    int rowCount(QModelIndex const& parent = QModelIndex()) const override;

    /// Returns the data of an item. Throws `std::bad_function_call` for Title if the title getter is empty.
    ///
    /// \param index  the item. The row must be less than rowCount(); it is not checked.
    /// \param role   Uid, Title or IconPath. The result for any other role is an invalid QVariant.
    QVariant data(QModelIndex const& index, int role = Qt::DisplayRole) const override;

    /// Reports a click, or registers or unregisters an observer. Emits no change signal.
    ///
    /// The role Click requires a valid \a index. For this role, the model calls ISimpleModelObserver::OnItemClicked()
    /// of every observer, in the order of registration.
    ///
    /// The roles RegisterObserver and UnregisterObserver require an invalid \a index. They register or unregister the
    /// observer in \a value. A null observer is ignored. Registering an observer again has no effect. Unregistering an
    /// observer that is not registered has no effect.
    ///
    /// \param index  for Click: the clicked item; for RegisterObserver and UnregisterObserver: an invalid index
    /// \param value  the observer as an `ISimpleModelObserver*`; ignored for Click
    /// \param role   Click, RegisterObserver or UnregisterObserver
    /// \returns false if \a role cannot be used with \a index; otherwise true, even if the call has no effect
    bool setData(QModelIndex const& index, QVariant const& value, int role = Qt::EditRole) override;

    /// Returns the role names for QML: "Uid", "Title", "IconPath" and "Click". The other roles cannot be used in QML by
    /// name.
    QHash<int, QByteArray> roleNames() const override;

private:
    class Impl;
    std::unique_ptr<Impl> const impl_;
};

} // namespace Util
} // namespace Zelkor
