#include <support/TestCase.h>

#include <Util/AlertBox.h>

#include <QtCore/QBuffer>
#include <QtCore/QDataStream>
#include <QtCore/QHash>
#include <QtCore/QResource>
#include <QtCore/QScopeGuard>
#include <QtCore/QTimer>
#include <QtGui/QImage>
#include <QtTest/QtTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLayout>
#include <QtWidgets/QProxyStyle>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStyleFactory>

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

using Zelkor::Util::AlertBox;

Q_DECLARE_METATYPE(Zelkor::Util::AlertBox::Level)

namespace
{

constexpr auto NoLevel = static_cast<AlertBox::Level>(3);

QColor const InfoColor(10, 20, 200);
QColor const ErrorColor(220, 10, 20);
QColor const QuestionColor(30, 210, 40);
QColor const OwnColor(1, 2, 3);

QPixmap CreatePixmap(QColor const& color)
{
    QPixmap pixmap(8, 8);
    pixmap.fill(color);
    return pixmap;
}

QByteArray CreatePng(QColor const& color)
{
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(color);
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return png;
}

QColor ColorOf(QPixmap const& pixmap)
{
    return pixmap.isNull() ? QColor() : pixmap.toImage().pixelColor(0, 0);
}

/// The files of one folder, in memory, as an application's resources.
class Resources
{
public:
    Resources(QString const& folder, QVector<QPair<QString, QByteArray>> files)
    {
        // Looked up by bisection.
        std::sort(files.begin(), files.end(),
                  [](auto const& a, auto const& b) { return Hash(a.first) < Hash(b.first); });
        AddFolder(1, 1); // the root, which has no name
        AddFolder(static_cast<quint32>(files.size()), 2);
        AddName(folder);
        for (auto const& file : files) {
            AddFile(file.first, file.second);
        }
        constexpr int HeaderSize = 20;
        Stream header(bytes_);
        header.writeRawData("qres", 4);
        header << qint32(1) << HeaderSize << HeaderSize + tree_.size() << HeaderSize + tree_.size() + data_.size();
        bytes_.append(tree_).append(data_).append(names_);
        isRegistered_ = QResource::registerResource(Begin());
    }

    ~Resources() { QResource::unregisterResource(Begin()); }

    Q_DISABLE_COPY_MOVE(Resources)

    bool IsRegistered() const { return isRegistered_; }

private:
    class Stream : public QDataStream
    {
    public:
        explicit Stream(QByteArray& bytes)
            : QDataStream(&bytes, QIODevice::Append)
        {}
    };

    static uint Hash(QString const& name) { return qt_hash(QStringView(name)); }

    uchar const* Begin() const { return reinterpret_cast<uchar const*>(bytes_.constData()); }

    void AddName(QString const& name)
    {
        Stream stream(names_);
        stream << static_cast<quint16>(name.size()) << Hash(name);
        for (QChar const character : name) {
            stream << character.unicode();
        }
    }

    void AddFolder(quint32 count, quint32 firstChild)
    {
        Stream(tree_) << NameOffset() << quint16(2) << count << firstChild;
    }

    void AddFile(QString const& name, QByteArray const& content)
    {
        Stream(tree_) << NameOffset() << quint16(0) << quint16(QLocale::AnyCountry) << quint16(QLocale::C)
                      << static_cast<quint32>(data_.size());
        AddName(name);
        Stream stream(data_);
        stream << content;
    }

    /// Of the name that is added next.
    quint32 NameOffset() const { return static_cast<quint32>(names_.size()); }

    QByteArray bytes_;
    QByteArray tree_;
    QByteArray data_;
    QByteArray names_;
    bool isRegistered_ = false;
};

/// Tells what is polished.
class ReportingStyle : public QProxyStyle
{
public:
    using Report = std::function<void(QLatin1String operation, QWidget* widget)>;

    ReportingStyle()
        : QProxyStyle(QStyleFactory::create(QStringLiteral("fusion")))
    {}

    Report report;

    using QProxyStyle::polish;
    using QProxyStyle::unpolish;

    void polish(QWidget* widget) override
    {
        Tell(QLatin1String("polish"), widget);
        QProxyStyle::polish(widget);
    }

    void unpolish(QWidget* widget) override
    {
        Tell(QLatin1String("unpolish"), widget);
        QProxyStyle::unpolish(widget);
    }

private:
    void Tell(QLatin1String operation, QWidget* widget) const
    {
        if (report) {
            report(operation, widget);
        }
    }
};

QString NameOf(QWidget const* widget)
{
    return QLatin1String(widget->metaObject()->className()) + QLatin1Char(' ') + widget->objectName();
}

/// What a pass over \a box and all in it leaves in the log.
QStringList PassOver(AlertBox& box)
{
    QStringList log{QStringLiteral("unpolish ") + NameOf(&box), QStringLiteral("polish ") + NameOf(&box)};
    auto const widgets = box.findChildren<QWidget*>();
    for (QWidget const* const widget : widgets) {
        log << QStringLiteral("unpolish ") + NameOf(widget) << QStringLiteral("polish ") + NameOf(widget);
    }
    return log;
}

/// Shows a box of level Error, which has to be closed.
using Shows = std::function<void()>;

std::unique_ptr<AlertBox> CreateBox(AlertBox::Level level)
{
    return std::make_unique<AlertBox>(level, QStringLiteral("title"), QStringLiteral("text"),
                                      QMessageBox::Ok | QMessageBox::Cancel);
}

} // namespace

Q_DECLARE_METATYPE(Shows)

class AlertBoxIconTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

protected:
    void SetUp() override
    {
        resources_ = std::make_unique<Resources>(QStringLiteral("MessageBox"),
                                                 QVector<QPair<QString, QByteArray>>{
                                                     {QStringLiteral("info_icon.png"), CreatePng(InfoColor)},
                                                     {QStringLiteral("error_icon.png"), CreatePng(ErrorColor)},
                                                     {QStringLiteral("question_icon.png"), CreatePng(QuestionColor)},
                                                 });
        QVERIFY(resources_->IsRegistered());
    }

    void TearDown() override { resources_.reset(); }

private Q_SLOTS:
    void iconGoesWithTheLevel_data()
    {
        QTest::addColumn<AlertBox::Level>("level");
        QTest::addColumn<QColor>("color");
        QTest::newRow("information") << AlertBox::Information << InfoColor;
        QTest::newRow("error") << AlertBox::Error << ErrorColor;
        QTest::newRow("question") << AlertBox::Question << QuestionColor;
        QTest::newRow("no level") << NoLevel << QColor();
    }

    void iconGoesWithTheLevel()
    {
        QFETCH(AlertBox::Level, level);
        QFETCH(QColor, color);
        QCOMPARE(ColorOf(AlertBox::GetPixmapForLevel(level)), color);
        auto const box = CreateBox(level);
        QVERIFY(box->iconPixmap().isNull());
        box->UpdateDefaultIcon();
        QCOMPARE(ColorOf(box->iconPixmap()), color);
        QCOMPARE(box->icon(), QMessageBox::NoIcon);
    }

    void iconIsNullWithoutResource()
    {
        resources_.reset();
        QVERIFY(AlertBox::GetPixmapForLevel(AlertBox::Error).isNull());
        auto const box = CreateBox(AlertBox::Error);
        box->UpdateDefaultIcon();
        QVERIFY(box->iconPixmap().isNull());
    }

    void bareBoxHasTheIconOfInformation()
    {
        AlertBox box;
        box.UpdateDefaultIcon();
        QCOMPARE(ColorOf(box.iconPixmap()), InfoColor);
    }

    void iconIsThatOfTheLevelAtConstruction()
    {
        auto const box = CreateBox(AlertBox::Error);
        box->SetDialogSubStyle(AlertBox::Question);
        box->UpdateDefaultIcon();
        QCOMPARE(ColorOf(box->iconPixmap()), ErrorColor);
    }

    void ownPixmapStays()
    {
        auto const box = CreateBox(AlertBox::Error);
        box->setIconPixmap(CreatePixmap(OwnColor));
        box->UpdateDefaultIcon();
        QCOMPARE(ColorOf(box->iconPixmap()), OwnColor);
        box->PrepareToShow();
        QCOMPARE(ColorOf(box->iconPixmap()), OwnColor);
    }

    void ownStandardIconStays()
    {
        auto const box = CreateBox(AlertBox::Error);
        box->setIcon(QMessageBox::Warning);
        QImage const before = box->iconPixmap().toImage();
        QVERIFY(!before.isNull());
        box->PrepareToShow();
        QCOMPARE(box->icon(), QMessageBox::Warning);
        QCOMPARE(box->iconPixmap().toImage(), before);
    }

    void ownStandardIconStaysEvenWhenTheStyleHasNoPictureOfIt()
    {
        class NoPictures : public QProxyStyle
        {
        public:
            QIcon standardIcon(StandardPixmap /*icon*/, QStyleOption const* /*option*/,
                               QWidget const* /*widget*/) const override
            {
                return {};
            }
        } style;
        AlertBox box;
        box.setStyle(&style);
        box.setIcon(QMessageBox::Warning);
        QVERIFY(box.iconPixmap().isNull());
        box.UpdateDefaultIcon();
        QCOMPARE(box.icon(), QMessageBox::Warning);
        QVERIFY(box.iconPixmap().isNull());
    }

    void noIconWhenNotWanted()
    {
        auto const box = CreateBox(AlertBox::Error);
        box->SetUseDefaultLevelIcon(false);
        QVERIFY(!box->GetUseDefaultLevelIcon());
        box->PrepareToShow();
        QVERIFY(box->iconPixmap().isNull());
        box->SetUseDefaultLevelIcon(true);
        QVERIFY(box->GetUseDefaultLevelIcon());
        QVERIFY(box->iconPixmap().isNull());
        box->PrepareToShow();
        QCOMPARE(ColorOf(box->iconPixmap()), ErrorColor);
    }

    void defaultIconStaysWhenNoLongerWanted()
    {
        auto const box = CreateBox(AlertBox::Error);
        box->UpdateDefaultIcon();
        box->SetUseDefaultLevelIcon(false);
        box->UpdateDefaultIcon();
        QCOMPARE(ColorOf(box->iconPixmap()), ErrorColor);
    }

    void iconIsSetOnce()
    {
        auto const box = CreateBox(AlertBox::Error);
        box->UpdateDefaultIcon();
        QPointer<QLayout> const grid(box->layout()); // each new icon has a new one
        box->UpdateDefaultIcon();
        QVERIFY(!grid.isNull());
        QCOMPARE(box->layout(), grid.data());
    }

    void iconComesBackWhenItWasTakenAway()
    {
        auto const box = CreateBox(AlertBox::Question);
        box->UpdateDefaultIcon();
        box->setIconPixmap(QPixmap());
        box->UpdateDefaultIcon();
        QCOMPARE(ColorOf(box->iconPixmap()), QuestionColor);
    }

    void polishesTheBoxAndThenAllInItWithTheStyleOfTheBox()
    {
        ReportingStyle style;
        auto const box = CreateBox(AlertBox::Information);
        auto* const outer = new QWidget(box.get());
        outer->setObjectName(QStringLiteral("outer"));
        (new QLabel(outer))->setObjectName(QStringLiteral("inner"));
        box->setStyle(&style);
        QStringList log;
        style.report = [&log](QLatin1String operation, QWidget* widget) {
            log += operation + QLatin1Char(' ') + NameOf(widget);
        };
        box->Repolish();
        style.report = nullptr;
        QCOMPARE(log, PassOver(*box));
        QVERIFY(log.contains(QStringLiteral("polish QLabel inner")));
    }

    void polishesAWidgetThatHasAStyleOfItsOwnWithTheStyleOfTheBox()
    {
        ReportingStyle boxStyle;
        ReportingStyle ownStyle;
        AlertBox box; // has no style sheet, which would put a style between
        QLabel label(&box);
        label.setStyle(&ownStyle);
        box.setStyle(&boxStyle);
        QCOMPARE(label.style(), &ownStyle);
        QWidgetList polishedByBox;
        QWidgetList polishedByOwn;
        boxStyle.report = [&polishedByBox](QLatin1String /*operation*/, QWidget* widget) { polishedByBox += widget; };
        ownStyle.report = [&polishedByOwn](QLatin1String /*operation*/, QWidget* widget) { polishedByOwn += widget; };
        box.Repolish();
        boxStyle.report = nullptr;
        ownStyle.report = nullptr;
        QCOMPARE(polishedByBox.count(&label), 2);
        QVERIFY(polishedByOwn.isEmpty());
    }

    void polishingMakesPropertiesShow()
    {
        auto const box = CreateBox(AlertBox::Information);
        QAbstractButton* const ok = box->button(QMessageBox::Ok);
        box->setStyleSheet(QStringLiteral("QPushButton[mine=\"yes\"] { min-width: 234px }"));
        ok->ensurePolished();
        ok->setProperty("mine", QStringLiteral("yes"));
        QVERIFY(ok->minimumWidth() < 234);
        box->Repolish();
        QVERIFY(ok->minimumWidth() >= 234);
    }

    void preparesInOrder()
    {
        ReportingStyle style;
        auto const box = CreateBox(AlertBox::Error);
        QAbstractButton const* const ok = box->button(QMessageBox::Ok);
        QAbstractButton const* const cancel = box->button(QMessageBox::Cancel);
        box->setStyle(&style);

        QStringList steps;
        auto const addStep = [&steps](char const* text) {
            if (steps.isEmpty() || steps.constLast() != QLatin1String(text)) {
                steps += QLatin1String(text);
            }
        };
        style.report = [&](QLatin1String /*operation*/, QWidget* widget) {
            if (steps.contains(QLatin1String("box is polished"))) {
                return;
            }
            if (widget == box.get()) {
                addStep("box is polished");
            } else if (widget == ok || widget == cancel) {
                addStep("button is polished");
            }
        };
        connect(box->layout(), &QObject::destroyed, this, [&] {
            addStep(ok->property("buttonRole").isValid() && cancel->property("buttonRole").isValid()
                        ? "icon is set, buttons are tagged"
                        : "icon is set too early");
        });
        box->PrepareToShow();
        style.report = nullptr;
        QCOMPARE(steps,
                 (QStringList{QStringLiteral("button is polished"), QStringLiteral("icon is set, buttons are tagged"),
                              QStringLiteral("box is polished")}));
        QCOMPARE(ColorOf(box->iconPixmap()), ErrorColor);
    }

    void preparesInOnePassOverTheTaggedBox()
    {
        ReportingStyle style;
        auto const box = CreateBox(AlertBox::Error);
        box->PrepareToShow();
        box->setStyle(&style);
        QHash<QWidget*, int> polishes;
        style.report = [&polishes](QLatin1String operation, QWidget* widget) {
            polishes[widget] += operation == QLatin1String("polish");
        };
        box->PrepareToShow();
        style.report = nullptr;
        QCOMPARE(polishes.value(box.get()), 1);
        QCOMPARE(polishes.value(box->findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))), 1);
        QCOMPARE(polishes.value(box->button(QMessageBox::Ok)), 4); // three properties, and the pass
    }

    void everyWayOfShowingPreparesTheBox_data()
    {
        QTest::addColumn<Shows>("show");
        QTest::newRow("static Exec") << Shows(
            [] { AlertBox::Exec(AlertBox::Error, QStringLiteral("title"), QStringLiteral("text"), QMessageBox::Ok); });
        QTest::newRow("Exec") << Shows([] { CreateBox(AlertBox::Error)->Exec(); });
        QTest::newRow("Show") << Shows([] {
            auto const box = CreateBox(AlertBox::Error);
            box->Show(true);
            QTRY_VERIFY(!box->isVisible());
        });
    }

    void everyWayOfShowingPreparesTheBox()
    {
        QFETCH(Shows, show);
        // Of the application, for who calls the static function has no box to give a style to.
        QString const styleBefore = QApplication::style()->objectName();
        auto* const style = new ReportingStyle;
        QApplication::setStyle(style);
        auto const styleEnds = qScopeGuard([style, &styleBefore] {
            style->report = nullptr;
            QApplication::setStyle(styleBefore);
        });
        bool isPolishedAgain = false;
        style->report = [&isPolishedAgain](QLatin1String operation, QWidget* widget) {
            isPolishedAgain |=
                operation == QLatin1String("unpolish") && widget->objectName() == QLatin1String("qt_msgbox_label");
        };
        QColor color;
        QTimer::singleShot(0, this, [&color] {
            auto* const box = qobject_cast<AlertBox*>(QApplication::activeModalWidget());
            QVERIFY(box);
            color = ColorOf(box->iconPixmap());
            box->done(0);
        });
        show();
        QCOMPARE(color, ErrorColor);
        QVERIFY(isPolishedAgain);
    }

private:
    std::unique_ptr<Resources> resources_;
};

ZQTUTIL_WIDGET_TEST_MAIN(AlertBoxIconTest)
#include "AlertBoxIconTest.moc"
