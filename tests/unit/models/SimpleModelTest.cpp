#include <support/TestCase.h>

#include <Util/Model/SimpleModel/SimpleModel.h>

#include <QtCore/QPointer>
#include <QtCore/QSortFilterProxyModel>
#include <QtCore/QStringListModel>
#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QtTest>

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

using Zelkor::Util::ISimpleModelObserver;
using Zelkor::Util::SimpleModel;

static_assert(std::is_base_of_v<QAbstractListModel, SimpleModel>);
static_assert(!std::is_copy_constructible_v<SimpleModel> && !std::is_move_constructible_v<SimpleModel>);
static_assert(!std::is_default_constructible_v<SimpleModel> && !std::is_final_v<SimpleModel>);
static_assert(std::is_abstract_v<ISimpleModelObserver> && std::has_virtual_destructor_v<ISimpleModelObserver>);
static_assert(SimpleModel::Uid == Qt::UserRole + 1 && SimpleModel::Title == Qt::UserRole + 2);
static_assert(SimpleModel::IconPath == Qt::UserRole + 3 && SimpleModel::Click == Qt::UserRole + 4);
static_assert(SimpleModel::RegisterObserver == Qt::UserRole + 5 && SimpleModel::UnregisterObserver == Qt::UserRole + 6);
static_assert(SimpleModel::Uid == 257 && SimpleModel::UnregisterObserver == 262);

namespace
{

/// Observer that records the clicks that the model reports.
class Observer : public ISimpleModelObserver
{
public:
    QStringList clickedUids;
    std::function<void()> onClick = [] {};

    void OnItemClicked(QString const& uid) override
    {
        clickedUids += uid;
        onClick();
    }
};

QString TitleOf(QString const& uid)
{
    return QLatin1String("Title of ") + uid;
}

QVariant ToVariant(ISimpleModelObserver* observer)
{
    return QVariant::fromValue(observer);
}

} // namespace

class SimpleModelTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void declaresNoMethodsAndNoProperties()
    {
        QMetaObject const& meta = SimpleModel::staticMetaObject;
        QCOMPARE(meta.className(), "Zelkor::Util::SimpleModel");
        QCOMPARE(meta.superClass(), &QAbstractListModel::staticMetaObject);
        QCOMPARE(meta.methodCount(), meta.methodOffset());
        QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    }

    void canBeCreatedByTheFactoryFunction()
    {
        QObject parent;
        QPointer<SimpleModel> const model = SimpleModel::Create({QStringLiteral("a")}, &TitleOf, &parent);
        QCOMPARE(model->parent(), &parent);
        QCOMPARE(model->rowCount(), 1);

        std::unique_ptr<SimpleModel> const orphan(SimpleModel::Create({}, nullptr, nullptr));
        QCOMPARE(orphan->parent(), nullptr);
    }

    void movesItsArguments()
    {
        QStringList uids = {QStringLiteral("a"), QStringLiteral("b")};
        std::function<QString(QString const&)> titleGetter = &TitleOf;
        SimpleModel const model(std::move(uids), std::move(titleGetter), nullptr);
        QVERIFY(uids.isEmpty()); // NOLINT(bugprone-use-after-move): the test checks the moved-from state
        QVERIFY(!titleGetter);   // NOLINT(bugprone-use-after-move)
        QCOMPARE(model.rowCount(), 2);
    }

    void passesTheModelTesterOfQt()
    {
        QAbstractItemModelTester const tester(model_.get(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        Click(0);
    }

    void hasOneRowPerItem()
    {
        QCOMPARE(model_->rowCount(QModelIndex()), 3);
        QCOMPARE(model_->rowCount(model_->index(0)), 0);
        QCOMPARE(static_cast<QAbstractItemModel const&>(*model_).columnCount(QModelIndex()), 1);
    }

    void returnsItemData_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("role");
        QTest::addColumn<QVariant>("expected");

        QTest::newRow("uid") << 0 << 257 << QVariant(QStringLiteral("video_trim"));
        QTest::newRow("uid of the last item") << 2 << 257 << QVariant(QStringLiteral("a_b_c"));
        QTest::newRow("title") << 0 << 258 << QVariant(QStringLiteral("Title of video_trim"));
        QTest::newRow("icon") << 0 << 259 << QVariant(QStringLiteral("qrc:/icons/video/trim.png"));
        QTest::newRow("icon of a uid without underscore")
            << 1 << 259 << QVariant(QStringLiteral("qrc:/icons/audio.png"));
        QTest::newRow("icon of a uid with two underscores")
            << 2 << 259 << QVariant(QStringLiteral("qrc:/icons/a/b/c.png"));
        QTest::newRow("click role") << 0 << 260 << QVariant();
        QTest::newRow("register role") << 0 << 261 << QVariant();
        QTest::newRow("unregister role") << 0 << 262 << QVariant();
        QTest::newRow("unknown role") << 0 << 263 << QVariant();
        QTest::newRow("display role") << 0 << int(Qt::DisplayRole) << QVariant();
        QTest::newRow("decoration role") << 0 << int(Qt::DecorationRole) << QVariant();
        QTest::newRow("first user role") << 0 << 256 << QVariant();
    }

    void returnsItemData()
    {
        QFETCH(int, row);
        QFETCH(int, role);
        QFETCH(QVariant, expected);
        QVariant const value = model_->data(model_->index(row), role);
        QCOMPARE(value, expected);
        QCOMPARE(value.isValid(), expected.isValid());
        QCOMPARE(value.userType(), expected.userType());
    }

    void replacesUnderscoresInIconPaths_data()
    {
        QTest::addColumn<QString>("uid");
        QTest::addColumn<QString>("path");
        QTest::newRow("empty") << QString() << QStringLiteral("qrc:/icons/.png");
        QTest::newRow("only underscores") << QStringLiteral("__") << QStringLiteral("qrc:/icons///.png");
        QTest::newRow("leading and trailing underscore")
            << QStringLiteral("_a_") << QStringLiteral("qrc:/icons//a/.png");
        QTest::newRow("format place marker") << QStringLiteral("%1_%2") << QStringLiteral("qrc:/icons/%1/%2.png");
        QTest::newRow("Cyrillic") << QStringLiteral("\u0444_\u043C") << QStringLiteral("qrc:/icons/\u0444/\u043C.png");
        QTest::newRow("slash") << QStringLiteral("a/b") << QStringLiteral("qrc:/icons/a/b.png");
    }

    void replacesUnderscoresInIconPaths()
    {
        QFETCH(QString, uid);
        QFETCH(QString, path);
        SimpleModel const model({uid}, nullptr, nullptr);
        QCOMPARE(model.data(model.index(0), SimpleModel::IconPath).toString(), path);
        QCOMPARE(model.data(model.index(0), SimpleModel::Uid).toString(), uid);
    }

    void callsTheTitleGetterForEachQuery()
    {
        int calls = 0;
        SimpleModel const model(
            {QStringLiteral("a")}, [&calls](QString const&) { return QString::number(++calls); }, nullptr);
        QCOMPARE(calls, 0);
        QCOMPARE(model.data(model.index(0), SimpleModel::Title).toString(), QStringLiteral("1"));
        QCOMPARE(model.data(model.index(0), SimpleModel::Title).toString(), QStringLiteral("2"));
    }

    void throwsForATitleWithoutTitleGetter()
    {
        SimpleModel const model({QStringLiteral("a")}, nullptr, nullptr);
        QVERIFY_EXCEPTION_THROWN(model.data(model.index(0), SimpleModel::Title), std::bad_function_call);
    }

    void returnsRoleNames()
    {
        QHash<int, QByteArray> const expected = {{257, "Uid"}, {258, "Title"}, {259, "IconPath"}, {260, "Click"}};
        QCOMPARE(model_->roleNames(), expected);
    }

    void notifiesObserversInTheOrderOfRegistration()
    {
        QVector<Observer*> notified;
        first_.onClick = [this, &notified] { notified += &first_; };
        second_.onClick = [this, &notified] { notified += &second_; };
        Register(second_);
        Register(first_);
        QVERIFY(Click(0));
        QCOMPARE(notified, (QVector<Observer*>{&second_, &first_}));
        QCOMPARE(first_.clickedUids, QStringList{QStringLiteral("video_trim")});
        QCOMPARE(second_.clickedUids, QStringList{QStringLiteral("video_trim")});
    }

    void ignoresTheValueOfAClick_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("invalid") << QVariant();
        QTest::newRow("false") << QVariant(false);
        QTest::newRow("text") << QVariant(QStringLiteral("audio"));
    }

    void ignoresTheValueOfAClick()
    {
        QFETCH(QVariant, value);
        Register(first_);
        QVERIFY(model_->setData(model_->index(2), value, SimpleModel::Click));
        QCOMPARE(first_.clickedUids, QStringList{QStringLiteral("a_b_c")});
    }

    void doesNotEmitDataChangedOnClick()
    {
        Register(first_);
        QSignalSpy const changes(model_.get(), &SimpleModel::dataChanged);
        QVERIFY(Click(0));
        QCOMPARE(changes.count(), 0);
    }

    void acceptsAClickWithoutObservers() { QVERIFY(Click(1)); }

    void rejectsOtherRolesOfAnItem_data()
    {
        QTest::addColumn<int>("role");
        for (int const role : {int(Qt::EditRole), int(Qt::DisplayRole), 256, 257, 258, 259, 261, 262, 263}) {
            QTest::addRow("role %d", role) << role;
        }
    }

    void rejectsOtherRolesOfAnItem()
    {
        QFETCH(int, role);
        Register(second_);
        QVERIFY(!model_->setData(model_->index(0), ToVariant(&first_), role));
        QVERIFY(!model_->setData(model_->index(0), ToVariant(&second_), role));
        QCOMPARE(second_.clickedUids, QStringList());
        QVERIFY(Click(0));
        QCOMPARE(first_.clickedUids.size(), 0);  // first_ is not registered
        QCOMPARE(second_.clickedUids.size(), 1); // second_ is still registered
    }

    void rejectsOtherRolesWithoutItem_data()
    {
        QTest::addColumn<int>("role");
        for (int const role : {int(Qt::EditRole), 256, 257, 258, 259, 260, 263}) {
            QTest::addRow("role %d", role) << role;
        }
    }

    void rejectsOtherRolesWithoutItem()
    {
        QFETCH(int, role);
        Register(first_);
        QVERIFY(!model_->setData(QModelIndex(), ToVariant(&second_), role));
        QCOMPARE(first_.clickedUids, QStringList());
    }

    void registersAnObserverOnce()
    {
        QVERIFY(model_->setData(QModelIndex(), ToVariant(&first_), 261));
        QVERIFY(model_->setData(QModelIndex(), ToVariant(&first_), 261));
        Click(0);
        QCOMPARE(first_.clickedUids.size(), 1);
        QVERIFY(model_->setData(QModelIndex(), ToVariant(&first_), 262));
        Click(0);
        QCOMPARE(first_.clickedUids.size(), 1);
    }

    void ignoresUnusableObservers_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<int>("role");
        for (int const role : {261, 262}) {
            QTest::addRow("null, %d", role) << ToVariant(nullptr) << role;
            QTest::addRow("invalid, %d", role) << QVariant() << role;
            QTest::addRow("text, %d", role) << QVariant(QStringLiteral("observer")) << role;
        }
        QTest::newRow("unregistered observer, 262") << ToVariant(&second_) << 262;
    }

    void ignoresUnusableObservers()
    {
        QFETCH(QVariant, value);
        QFETCH(int, role);
        Register(first_);
        QVERIFY(model_->setData(QModelIndex(), value, role));
        Click(1);
        QCOMPARE(first_.clickedUids, QStringList{QStringLiteral("audio")});
    }

    void observersCanChangeDuringAClick()
    {
        first_.onClick = [this] {
            Register(second_);
            model_->setData(QModelIndex(), ToVariant(&first_), SimpleModel::UnregisterObserver);
        };
        Register(first_);
        Click(0);
        QCOMPARE(first_.clickedUids.size(), 1);
        QCOMPARE(second_.clickedUids.size(), 0); // second_ was added after the click began
        Click(0);
        QCOMPARE(first_.clickedUids.size(), 1);
        QCOMPARE(second_.clickedUids.size(), 1);
    }

    void observersCanClickDuringAClick()
    {
        first_.onClick = [this, again = true]() mutable {
            if (std::exchange(again, false)) {
                Click(1);
            }
        };
        Register(first_);
        Register(second_);
        Click(0);
        QCOMPARE(first_.clickedUids, (QStringList{QStringLiteral("video_trim"), QStringLiteral("audio")}));
        // The nested click finishes before the outer click reaches the second observer.
        QCOMPARE(second_.clickedUids, (QStringList{QStringLiteral("audio"), QStringLiteral("video_trim")}));
    }

    void acceptsClicksThroughAProxyModel()
    {
        QSortFilterProxyModel proxy;
        proxy.setSourceModel(model_.get());
        proxy.setSortRole(SimpleModel::Uid);
        proxy.sort(0);
        Register(first_);
        QVERIFY(proxy.setData(proxy.index(0, 0), true, SimpleModel::Click));
        QCOMPARE(first_.clickedUids, QStringList{QStringLiteral("a_b_c")});
    }

    void readsTheUidFromTheModelOfTheIndex()
    {
        SimpleModel const other({QStringLiteral("other")}, &TitleOf, nullptr);
        Register(first_);
        QVERIFY(model_->setData(other.index(0), true, SimpleModel::Click));

        QStringListModel const texts({QStringLiteral("text")});
        QVERIFY(model_->setData(texts.index(0), true, SimpleModel::Click));
        QCOMPARE(first_.clickedUids, (QStringList{QStringLiteral("other"), QString()}));
    }

    void registersTheObserverAsMetaType()
    {
        int const type = qMetaTypeId<ISimpleModelObserver*>();
        QCOMPARE(QMetaType::type("Zelkor::Util::ISimpleModelObserver *"), type);
        QCOMPARE(QMetaType::type("Zelkor::Util::ISimpleModelObserver*"), type);
        QCOMPARE(ToVariant(&first_).value<ISimpleModelObserver*>(), &first_);
    }

protected:
    void SetUp() override
    {
        model_ = std::make_unique<SimpleModel>(
            QStringList{QStringLiteral("video_trim"), QStringLiteral("audio"), QStringLiteral("a_b_c")}, &TitleOf,
            nullptr);
    }

    void TearDown() override
    {
        model_.reset();
        first_ = {};
        second_ = {};
    }

private:
    void Register(Observer& observer)
    {
        model_->setData(QModelIndex(), ToVariant(&observer), SimpleModel::RegisterObserver);
    }
    bool Click(int row) { return model_->setData(model_->index(row), QVariant(), SimpleModel::Click); }

    Observer first_;
    Observer second_;
    std::unique_ptr<SimpleModel> model_;
};

ZQTUTIL_TEST_MAIN(SimpleModelTest)

#include "SimpleModelTest.moc"
