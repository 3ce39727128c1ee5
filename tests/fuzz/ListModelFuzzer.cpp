// Fuzzes the list model. The first line of an input contains the items, separated by commas. Each of the following
// bytes selects an operation; see Session::Perform().

#include <fuzz/Fuzzing.h>

#include <Util/Model/SimpleModel/SimpleModel.h>

#include <QtTest/QAbstractItemModelTester>

#include <array>
#include <vector>

using Zelkor::Testing::FuzzInput;
using Zelkor::Testing::RequireEqual;
using Zelkor::Util::ISimpleModelObserver;
using Zelkor::Util::SimpleModel;

namespace
{

struct Notification
{
    ISimpleModelObserver const* observer;
    QString uid;

    bool operator==(Notification const& other) const { return observer == other.observer && uid == other.uid; }
};

bool SetObserver(SimpleModel& model, QModelIndex const& index, ISimpleModelObserver* observer, int role)
{
    return model.setData(index, QVariant::fromValue(observer), role);
}

/// Records the notifications. Each notification also registers #toRegister and then unregisters #toUnregister, if they
/// are not null.
class Observer : public ISimpleModelObserver
{
public:
    void OnItemClicked(QString const& uid) override
    {
        notifications->push_back({this, uid});
        if (toRegister) {
            SetObserver(*model, QModelIndex(), toRegister, SimpleModel::RegisterObserver);
        }
        if (toUnregister) {
            SetObserver(*model, QModelIndex(), toUnregister, SimpleModel::UnregisterObserver);
        }
    }

    SimpleModel* model = nullptr;
    std::vector<Notification>* notifications = nullptr;
    Observer* toRegister = nullptr;
    Observer* toUnregister = nullptr;
};

QString TitleOf(QString const& uid)
{
    return QStringLiteral("Title of ") + uid;
}

QString ExpectedIcon(QString const& uid)
{
    QString icon = QStringLiteral("qrc:/icons/");
    for (QChar const character : uid) {
        icon += character == QLatin1Char('_') ? QLatin1Char('/') : character;
    }
    return icon + QStringLiteral(".png");
}

/// Performs operations on a model, and keeps a list of the observers that should be registered.
class Session
{
public:
    explicit Session(QStringList const& uids)
        : uids_(uids)
        , model_(QStringList(uids), TitleOf)
        , tester_(&model_, QAbstractItemModelTester::FailureReportingMode::Fatal)
    {
        for (Observer& observer : observers_) {
            observer.model = &model_;
            observer.notifications = &notifications_;
        }
    }

    void Perform(FuzzInput& input)
    {
        switch (input.Byte()) {
        case 'r': {
            Observer& observer = TakeObserver(input);
            RequireEqual(SetObserver(model_, QModelIndex(), &observer, SimpleModel::RegisterObserver), true,
                         "result of a registration");
            Register(&observer);
            break;
        }
        case 'u': {
            Observer& observer = TakeObserver(input);
            RequireEqual(SetObserver(model_, QModelIndex(), &observer, SimpleModel::UnregisterObserver), true,
                         "result of an unregistration");
            Unregister(&observer);
            break;
        }
        case '+': {
            Observer& observer = TakeObserver(input);
            observer.toRegister = &TakeObserver(input);
            break;
        }
        case '-': {
            Observer& observer = TakeObserver(input);
            observer.toUnregister = &TakeObserver(input);
            break;
        }
        case 'n':
            RequireEqual(SetObserver(model_, QModelIndex(), nullptr, SimpleModel::RegisterObserver), true,
                         "result of a registration of null");
            RequireEqual(SetObserver(model_, QModelIndex(), nullptr, SimpleModel::UnregisterObserver), true,
                         "result of an unregistration of null");
            break;
        case 'c':
            Click(input);
            break;
        case 'w':
            WriteWithWrongRole(input);
            break;
        default:
            Read(input);
            break;
        }
    }

private:
    Observer& TakeObserver(FuzzInput& input) { return observers_[input.Byte() % observers_.size()]; }

    /// Returns the row that the next byte of \a input selects, or -1 if there are no items.
    int TakeRow(FuzzInput& input) const { return uids_.isEmpty() ? -1 : input.Byte() % uids_.size(); }

    void Register(Observer* observer)
    {
        if (std::find(registered_.begin(), registered_.end(), observer) == registered_.end()) {
            registered_.push_back(observer);
        }
    }

    void Unregister(Observer* observer)
    {
        registered_.erase(std::remove(registered_.begin(), registered_.end(), observer), registered_.end());
    }

    void Click(FuzzInput& input)
    {
        int const row = TakeRow(input);
        if (row < 0) {
            return;
        }
        std::vector<Notification> expected;
        std::vector<Observer*> const notified = registered_;
        for (Observer* const observer : notified) {
            expected.push_back({observer, uids_[row]});
            if (observer->toRegister) {
                Register(observer->toRegister);
            }
            if (observer->toUnregister) {
                Unregister(observer->toUnregister);
            }
        }
        notifications_.clear();
        RequireEqual(model_.setData(model_.index(row), QString(), SimpleModel::Click), true, "result of a click");
        RequireEqual(notifications_ == expected, true, "notifications of a click are correct");
    }

    void WriteWithWrongRole(FuzzInput& input)
    {
        int const role = Qt::UserRole + input.Byte() % 8;
        int const row = TakeRow(input);
        Observer& observer = TakeObserver(input);
        notifications_.clear();
        if (row >= 0 && role != SimpleModel::Click) {
            RequireEqual(SetObserver(model_, model_.index(row), &observer, role), false, "result for an item");
        }
        if (role != SimpleModel::RegisterObserver && role != SimpleModel::UnregisterObserver) {
            RequireEqual(SetObserver(model_, QModelIndex(), &observer, role), false, "result for an invalid index");
        }
        RequireEqual(notifications_.empty(), true, "no observer is notified");
    }

    void Read(FuzzInput& input)
    {
        RequireEqual(model_.rowCount(), uids_.size(), "number of items");
        int const row = TakeRow(input);
        if (row < 0) {
            return;
        }
        QModelIndex const index = model_.index(row);
        RequireEqual(model_.rowCount(index), 0, "number of children");
        RequireEqual(model_.data(index, SimpleModel::Uid), QVariant(uids_[row]), "uid");
        RequireEqual(model_.data(index, SimpleModel::Title), QVariant(TitleOf(uids_[row])), "title");
        RequireEqual(model_.data(index, SimpleModel::IconPath), QVariant(ExpectedIcon(uids_[row])), "icon");
        RequireEqual(model_.data(index, SimpleModel::Click).isValid(), false, "role that cannot be read is valid");
        RequireEqual(model_.data(index, input.Byte()).isValid(), false, "standard role is valid");
    }

    QStringList const uids_;
    SimpleModel model_;
    QAbstractItemModelTester const tester_;
    std::array<Observer, 4> observers_;
    std::vector<Observer*> registered_;
    std::vector<Notification> notifications_;
};

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    FuzzInput input(data, size);
    QString const items = QString::fromStdString(input.Line());
    Session session(items.split(QLatin1Char(','), Qt::SkipEmptyParts));
    while (!input.AtEnd()) {
        session.Perform(input);
    }
    return 0;
}
