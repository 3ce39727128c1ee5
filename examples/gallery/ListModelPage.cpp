#include "ListModelPage.h"

#include "ClickCounter.h"
#include "ItemDelegate.h"
#include "Widgets.h"

#include <Util/Model/SimpleModel/SimpleModel.h>
#include <Util/ObjectsConnector.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QMap>
#include <QtQml/QQmlContext>
#include <QtQml/QQmlEngine>
#include <QtQuickWidgets/QQuickWidget>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListView>
#include <QtWidgets/QVBoxLayout>

namespace Zelkor::Gallery
{
namespace
{

using Util::SimpleModel;

constexpr QSize IconSize(32, 32);
constexpr int SampleClicks[] = {0, 2, 0, 4};

QMap<QString, QString> const& Titles()
{
    static QMap<QString, QString> const titles = {
        {QStringLiteral("video_trim"), ListModelPage::tr("Trim")},
        {QStringLiteral("video_crop"), ListModelPage::tr("Crop")},
        {QStringLiteral("audio_mix"), ListModelPage::tr("Mix sound")},
        {QStringLiteral("captions"), ListModelPage::tr("Captions")},
        {QStringLiteral("export"), ListModelPage::tr("Export")},
    };
    return titles;
}

QWidget* Framed(QString const& title, QWidget* widget)
{
    auto* const box = new QGroupBox(title);
    auto* const column = new QVBoxLayout(box);
    column->addWidget(widget);
    return box;
}

} // namespace

ListModelPage::ListModelPage(QWidget* parent)
    : Page(parent)
    , model_(SimpleModel::Create(
          Titles().keys(), [](QString const& uid) { return Titles().value(uid); }, this))
{
    auto* const grid = new QGridLayout(this);
    SetUpPageLayout(grid);
    grid->addWidget(NewHint(tr("Both lists show the same model. A click is written to the model, which notifies the "
                               "checked counters.")),
                    0, 0, 1, 2);
    grid->addWidget(NewWidgetView(), 1, 0);
    grid->addWidget(NewQmlView(), 1, 1);
    grid->addWidget(new ClickCounter(tr("First counter"), model_), 2, 0);
    grid->addWidget(new ClickCounter(tr("Second counter"), model_), 2, 1);
    setFocusProxy(view_);
}

QWidget* ListModelPage::NewWidgetView()
{
    view_ = new QListView;
    view_->setAccessibleName(tr("Items in Qt Widgets"));
    view_->setIconSize(IconSize);
    view_->setItemDelegate(new ItemDelegate(view_));
    view_->setModel(model_);
    connect(view_, &QListView::clicked, model_,
            [model = model_](QModelIndex const& index) { model->setData(index, true, SimpleModel::Click); });
    Util::ObjectsConnector::registerReceiver(QStringLiteral("chosen in QML"), view_,
                                             QStringLiteral("clearSelection()"));
    return Framed(tr("Qt Widgets"), view_);
}

QWidget* ListModelPage::NewQmlView()
{
    qmlView_ = new QQuickWidget;
    qmlView_->setAccessibleName(tr("Items in QML"));
    qmlView_->setResizeMode(QQuickWidget::SizeRootObjectToView);
    // In the build folder, the library's QML module is in the folder "qml", next to the program's folder.
    qmlView_->engine()->addImportPath(QCoreApplication::applicationDirPath() + QStringLiteral("/../qml"));
    qmlView_->rootContext()->setContextProperty(QStringLiteral("items"), model_);
    UpdateQmlColours();
    qmlView_->setSource(QUrl(QStringLiteral("qrc:/qml/Items.qml")));
    return Framed(tr("QML"), qmlView_);
}

void ListModelPage::UpdateQmlColours()
{
    qmlView_->setClearColor(palette().color(QPalette::Base));
    qmlView_->rootContext()->setContextProperty(
        QStringLiteral("colours"), QVariantMap{{QStringLiteral("text"), palette().color(QPalette::Text)},
                                               {QStringLiteral("pressed"), palette().color(QPalette::AlternateBase)}});
}

void ListModelPage::changeEvent(QEvent* event)
{
    Page::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        UpdateQmlColours();
    }
}

void ListModelPage::ShowSample()
{
    for (int const row : SampleClicks) {
        model_->setData(model_->index(row), true, SimpleModel::Click);
    }
    view_->setCurrentIndex(model_->index(0));
    ScheduleSampleShown();
}

} // namespace Zelkor::Gallery
