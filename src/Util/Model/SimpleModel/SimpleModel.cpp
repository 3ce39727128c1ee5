#include <Util/Model/SimpleModel/SimpleModel.h>

#include <Base/EventHandlerList.h>

#include <QtCore/QStringView>

#include <algorithm>
#include <utility>

// Design notes
//
// setData() is used to report clicks and to register observers. Therefore, QML code and observers need only the
// interface of QAbstractItemModel.
//
// The items never change, so the model emits no change signals. setData() copies the list of observers before it
// reports a click. Therefore, an observer can register and unregister observers while it handles a click.

namespace Zelkor::Util
{

namespace
{

/// Returns the URL of the icon of the item \a uid. Each underscore in \a uid becomes a "/" in the URL.
QString IconPathOf(QString const& uid)
{
    static constexpr QStringView before(u"qrc:/icons/");
    static constexpr QStringView after(u".png");
    QString path(before.length() + uid.length() + after.length(), Qt::Uninitialized);
    QChar* const uidAt = std::copy(before.begin(), before.end(), path.data());
    QChar* const afterAt = std::transform(
        uid.begin(), uid.end(), uidAt, [](QChar letter) { return letter == QLatin1Char('_') ? QChar(u'/') : letter; });
    std::copy(after.begin(), after.end(), afterAt);
    return path;
}

} // namespace

ISimpleModelObserver::~ISimpleModelObserver() = default;

class ZQTUTIL_NO_EXPORT SimpleModel::Impl : public Core::EventHandlerList<ISimpleModelObserver, Core::SyncExecutePolicy>
{
public:
    Impl(QStringList&& itemUids, std::function<QString(QString const&)>&& getter)
        : uids(std::move(itemUids))
        , titleGetter(std::move(getter))
    {}

    QStringList const uids;
    std::function<QString(QString const&)> const titleGetter;
};

SimpleModel* SimpleModel::Create(QStringList&& uids, std::function<QString(QString const&)>&& titleGetter,
                                 QObject* parent)
{
    return new SimpleModel(std::move(uids), std::move(titleGetter), parent);
}

SimpleModel::SimpleModel(QStringList&& uids, std::function<QString(QString const&)>&& titleGetter, QObject* parent)
    : QAbstractListModel(parent)
    , impl_(std::make_unique<Impl>(std::move(uids), std::move(titleGetter)))
{}

SimpleModel::~SimpleModel() = default;

int SimpleModel::rowCount(QModelIndex const& parent) const
{
    return parent.isValid() ? 0 : impl_->uids.size();
}

QVariant SimpleModel::data(QModelIndex const& index, int role) const
{
    // The row is deliberately not checked, because views request only rows that exist.
    if (role == Uid) {
        return impl_->uids.at(index.row());
    }
    if (role == Title) {
        return impl_->titleGetter(impl_->uids.at(index.row()));
    }
    if (role == IconPath) {
        return IconPathOf(impl_->uids.at(index.row()));
    }
    return {};
}

bool SimpleModel::setData(QModelIndex const& index, QVariant const& value, int role)
{
    if (index.isValid()) {
        if (role != Click) {
            return false;
        }
        // The index can belong to a proxy model, whose rows can differ from the rows of this model. Therefore, read the
        // uid with index.data() and not from impl_->uids.
        QString const uid = index.data(Uid).toString();
        impl_->PerformForEachEventHandler([&uid](ISimpleModelObserver* observer) { observer->OnItemClicked(uid); });
        return true;
    }
    switch (role) {
    case RegisterObserver:
        impl_->RegisterEventHandler(value.value<ISimpleModelObserver*>());
        return true;
    case UnregisterObserver:
        impl_->UnregisterEventHandler(value.value<ISimpleModelObserver*>());
        return true;
    default:
        return false;
    }
}

QHash<int, QByteArray> SimpleModel::roleNames() const
{
    return {{Uid, "Uid"}, {Title, "Title"}, {IconPath, "IconPath"}, {Click, "Click"}};
}

} // namespace Zelkor::Util
