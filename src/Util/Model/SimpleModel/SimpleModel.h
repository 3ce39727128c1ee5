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
/// supplies, and an icon path that is derived from the uid. Views write clicks to the model, which notifies its
/// observers.
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
    /// The roles for data(), which are marked "read", and for setData(), which are marked "write".
    enum Role {
        Uid = Qt::UserRole + 1, ///< read: the uid
        Title,                  ///< read: the result of the title getter for the uid
        IconPath,               ///< read: the icon URL; "qrc:/icons/video/trim.png" for the uid "video_trim"
        Click,                  ///< write with a valid index: reports a click; the value is ignored
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

    /// Returns the number of items, or 0 if \a parent is a valid index.
    int rowCount(QModelIndex const& parent = QModelIndex()) const override;

    /// Returns the data of an item. Throws `std::bad_function_call` for Title if the title getter is empty.
    ///
    /// \param index  the item. The row must be less than rowCount(); it is not checked.
    /// \param role   Uid, Title or IconPath. The result for any other role is an invalid QVariant.
    QVariant data(QModelIndex const& index, int role = Qt::DisplayRole) const override;

    /// Reports a click, or registers or unregisters an observer. Emits no change signal.
    ///
    /// With a valid \a index, Click calls ISimpleModelObserver::OnItemClicked() of every observer, in the order of
    /// registration. With an invalid \a index, RegisterObserver and UnregisterObserver use the observer in \a value. An
    /// observer that is null, already registered or not registered is ignored.
    ///
    /// \param index  for Click: the clicked item; for RegisterObserver and UnregisterObserver: an invalid index
    /// \param value  the observer as an `ISimpleModelObserver*`; ignored for Click
    /// \param role   Click, RegisterObserver or UnregisterObserver
    /// \returns false if \a role cannot be used with \a index; otherwise true, even if the observer is ignored
    bool setData(QModelIndex const& index, QVariant const& value, int role = Qt::EditRole) override;

    /// Returns the role names for QML: "Uid", "Title", "IconPath" and "Click". Qt's standard roles have no names.
    QHash<int, QByteArray> roleNames() const override;

private:
    class Impl;
    std::unique_ptr<Impl> const impl_;
};

} // namespace Util
} // namespace Zelkor
