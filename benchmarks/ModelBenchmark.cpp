// Measures SimpleModel: reads the uid and the icon path of each item, as a view does.

#include "Support.h"

#include <Util/Model/SimpleModel/SimpleModel.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QStringListModel>
#include <QtGui/QStandardItemModel>

#include <string>
#include <vector>

namespace Zelkor::Benchmarks
{
namespace
{

using Util::SimpleModel;

constexpr int Count = 100;

QStringList Uids()
{
    QStringList uids;
    for (int i = 0; i < Count; ++i) {
        uids << QStringLiteral("video_effects_trim_%1").arg(i);
    }
    return uids;
}

/// A list model that implements only rowCount() and data(). The time to read its uids is the lower bound for
/// SimpleModel.
class MinimalModel : public QAbstractListModel
{
public:
    int rowCount(QModelIndex const& parent) const override { return parent.isValid() ? 0 : uids_.size(); }

    QVariant data(QModelIndex const& index, int role) const override
    {
        return role == SimpleModel::Uid ? QVariant(uids_.at(index.row())) : QVariant();
    }

private:
    QStringList const uids_ = Uids();
};

/// A SimpleModel whose titles are equal to the uids.
class UidModel : public SimpleModel
{
public:
    UidModel()
        : SimpleModel(Uids(), [](QString const& uid) { return uid; })
    {}
};

class TextModel : public QStringListModel
{
public:
    TextModel()
        : QStringListModel(Uids())
    {}
};

class ItemModel : public QStandardItemModel
{
public:
    ItemModel()
    {
        for (QString const& uid : Uids()) {
            auto* const item = new QStandardItem;
            item->setData(uid, SimpleModel::Uid);
            appendRow(item);
        }
    }
};

/// Measures the time to read the data of every item for the item data role \a Role. Calls the virtual functions of
/// QAbstractItemModel, as a view does.
template <class Model, int Role>
void Read(benchmark::State& state)
{
    Model const theModel;
    QAbstractItemModel const* model = &theModel;
    benchmark::DoNotOptimize(model);
    std::vector<QModelIndex> indexes;
    for (int row = 0; row < model->rowCount(); ++row) {
        indexes.push_back(model->index(row, 0));
    }
    for (auto _ : state) {
        for (QModelIndex const& index : indexes) {
            benchmark::DoNotOptimize(model->data(index, Role));
        }
    }
}

/// Returns the icon path of \a uid. Allocates a string of the final length and writes each character once. The time of
/// this function is the lower bound for creating an icon path.
QString OnePass(QString const& uid)
{
    static QLatin1String const before("qrc:/icons/");
    static QLatin1String const after(".png");
    QString path(before.size() + uid.size() + after.size(), Qt::Uninitialized);
    QChar* out = path.data();
    for (char const letter : before) {
        *out++ = QLatin1Char(letter);
    }
    for (QChar const letter : uid) {
        *out++ = letter == QLatin1Char('_') ? QLatin1Char('/') : letter;
    }
    for (char const letter : after) {
        *out++ = QLatin1Char(letter);
    }
    return path;
}

/// Returns the icon path of \a uid, computed with the most obvious code.
QString ReplaceAndArg(QString const& uid)
{
    return QStringLiteral("qrc:/icons/%1.png").arg(QString(uid).replace(QLatin1Char('_'), QLatin1Char('/')));
}

/// A model that provides only icon paths. Calls the function \a Path to create the icon path of a uid.
template <QString (*Path)(QString const&)>
class IconModel : public QAbstractListModel
{
public:
    int rowCount(QModelIndex const& parent) const override { return parent.isValid() ? 0 : uids_.size(); }

    QVariant data(QModelIndex const& index, int role) const override
    {
        return role == SimpleModel::IconPath ? QVariant(Path(uids_.at(index.row()))) : QVariant();
    }

private:
    QStringList const uids_ = Uids();
};

void RegisterAll()
{
    benchmark::RegisterBenchmark("ModelUid/SimpleModel", Read<UidModel, SimpleModel::Uid>);
    benchmark::RegisterBenchmark("ModelUid/MinimalModel", Read<MinimalModel, SimpleModel::Uid>);
    benchmark::RegisterBenchmark("ModelUid/QStringListModel", Read<TextModel, Qt::DisplayRole>);
    benchmark::RegisterBenchmark("ModelUid/QStandardItemModel", Read<ItemModel, SimpleModel::Uid>);
    benchmark::RegisterBenchmark("IconPath/SimpleModel", Read<UidModel, SimpleModel::IconPath>);
    benchmark::RegisterBenchmark("IconPath/OnePass", Read<IconModel<OnePass>, SimpleModel::IconPath>);
    benchmark::RegisterBenchmark("IconPath/ReplaceAndArg", Read<IconModel<ReplaceAndArg>, SimpleModel::IconPath>);
}

} // namespace
} // namespace Zelkor::Benchmarks

int main(int argc, char** argv)
{
    QCoreApplication const application(argc, argv);
    Zelkor::Benchmarks::RegisterAll();
    return Zelkor::Benchmarks::RunBenchmarks(argc, argv);
}
