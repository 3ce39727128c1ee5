#include <support/TestCase.h>
#include <support/displays/RecordingStyle.h>

#include <Util/AlertBox.h>

#include <QtCore/QBuffer>
#include <QtCore/QDataStream>
#include <QtCore/QResource>
#include <QtCore/QTimer>
#include <QtGui/QImage>
#include <QtTest/QtTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLayout>
#include <QtWidgets/QProxyStyle>
#include <QtWidgets/QPushButton>

#include <algorithm>
#include <memory>

using Zelkor::Testing::RecordingStyle;
using Zelkor::Testing::Repolishing;
using Zelkor::Util::AlertBox;

Q_DECLARE_METATYPE(Zelkor::Util::AlertBox::Level)

namespace
{

constexpr auto NoLevel = static_cast<AlertBox::Level>(3);

QColor const InfoColor(10, 20, 200);
QColor const ErrorColor(220, 10, 20);
QColor const QuestionColor(30, 210, 40);
QColor const CustomColor(1, 2, 3);

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

/// Registers files in one folder as Qt resources. The destructor unregisters them. The resources of a .qrc file would
/// be present in every test, but one test needs an application without these resources. Therefore, this class builds
/// the resource data in memory, in version 1 of the binary format of QResource.
class Resources
{
public:
    Resources(QString const& folder, QVector<QPair<QString, QByteArray>> files)
    {
        // QResource finds files by binary search over the hashes of their names.
        std::sort(files.begin(), files.end(),
                  [](auto const& a, auto const& b) { return Hash(a.first) < Hash(b.first); });
        AddFolder(1, 1); // the unnamed root folder is node 0 of the tree; its only child is node 1
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

    /// Returns the offset in names_ at which the next name will be added.
    quint32 NameOffset() const { return static_cast<quint32>(names_.size()); }

    QByteArray bytes_;
    QByteArray tree_;
    QByteArray data_;
    QByteArray names_;
    bool isRegistered_ = false;
};

std::unique_ptr<AlertBox> CreateBox(AlertBox::Level level)
{
    return std::make_unique<AlertBox>(level, QStringLiteral("title"), QStringLiteral("text"),
                                      QMessageBox::Ok | QMessageBox::Cancel);
}

/// Sets a RecordingStyle as the application style. The destructor restores the previous style.
///
/// The static function AlertBox::Exec() creates its box itself, so a test cannot set the style of that box directly.
class RecordingApplicationStyle
{
public:
    RecordingApplicationStyle()
        : nameBefore_(QApplication::style()->objectName())
        , style_(new RecordingStyle({"objectName"}))
    {
        QApplication::setStyle(style_);
    }

    ~RecordingApplicationStyle() { QApplication::setStyle(nameBefore_); }

    Q_DISABLE_COPY_MOVE(RecordingApplicationStyle)

    /// Returns true if the style has unpolished the text label of a message box. Only AlertBox::Repolish() unpolishes
    /// this label.
    bool HasRepolishedABox() const
    {
        auto const& calls = style_->calls;
        return std::any_of(calls.begin(), calls.end(), [](RecordingStyle::Call const& call) {
            return call.operation == RecordingStyle::Operation::Unpolish &&
                   call.values == QStringList{QStringLiteral("qt_msgbox_label")};
        });
    }

private:
    QString nameBefore_;
    RecordingStyle* style_; // owned by QApplication
};

/// Queues a call that runs in the event loop of the modal alert box. The call stores the colour of the box's icon in
/// \a color, and then closes the box.
void CloseBoxLater(QColor& color)
{
    QTimer::singleShot(0, qApp, [&color] {
        auto* const box = qobject_cast<AlertBox*>(QApplication::activeModalWidget());
        QVERIFY(box);
        color = ColorOf(box->iconPixmap());
        box->done(0);
    });
}

int IndexOfFirstCall(RecordingStyle const& style, QWidget const* widget)
{
    for (int i = 0; i < style.calls.size(); ++i) {
        if (style.calls.at(i).widget == widget) {
            return i;
        }
    }
    return -1;
}

} // namespace

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
    void iconDependsOnTheLevel_data()
    {
        QTest::addColumn<AlertBox::Level>("level");
        QTest::addColumn<QColor>("color");
        QTest::newRow("information") << AlertBox::Information << InfoColor;
        QTest::newRow("error") << AlertBox::Error << ErrorColor;
        QTest::newRow("question") << AlertBox::Question << QuestionColor;
        QTest::newRow("no level") << NoLevel << QColor();
    }

    void iconDependsOnTheLevel()
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

    void iconIsNullIfTheResourceIsMissing()
    {
        resources_.reset();
        QVERIFY(AlertBox::GetPixmapForLevel(AlertBox::Error).isNull());
        auto const box = CreateBox(AlertBox::Error);
        box->UpdateDefaultIcon();
        QVERIFY(box->iconPixmap().isNull());
    }

    void defaultConstructedBoxUsesTheInformationIcon()
    {
        AlertBox box;
        box.UpdateDefaultIcon();
        QCOMPARE(ColorOf(box.iconPixmap()), InfoColor);
    }

    void setDialogSubStyleDoesNotChangeTheIconLevel()
    {
        auto const box = CreateBox(AlertBox::Error);
        box->SetDialogSubStyle(AlertBox::Question);
        box->UpdateDefaultIcon();
        QCOMPARE(ColorOf(box->iconPixmap()), ErrorColor);
    }

    void keepsACustomPixmap()
    {
        auto const box = CreateBox(AlertBox::Error);
        box->setIconPixmap(CreatePixmap(CustomColor));
        box->UpdateDefaultIcon();
        QCOMPARE(ColorOf(box->iconPixmap()), CustomColor);
        box->PrepareToShow();
        QCOMPARE(ColorOf(box->iconPixmap()), CustomColor);
    }

    void keepsACustomStandardIcon()
    {
        auto const box = CreateBox(AlertBox::Error);
        box->setIcon(QMessageBox::Warning);
        QImage const before = box->iconPixmap().toImage();
        QVERIFY(!before.isNull());
        box->PrepareToShow();
        QCOMPARE(box->icon(), QMessageBox::Warning);
        QCOMPARE(box->iconPixmap().toImage(), before);
    }

    void keepsACustomStandardIconWithoutPixmap()
    {
        class StyleWithoutIcons : public QProxyStyle
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

    void setsNoIconIfDisabled()
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

    void disablingTheDefaultIconKeepsACurrentIcon()
    {
        auto const box = CreateBox(AlertBox::Error);
        box->UpdateDefaultIcon();
        box->SetUseDefaultLevelIcon(false);
        box->UpdateDefaultIcon();
        QCOMPARE(ColorOf(box->iconPixmap()), ErrorColor);
    }

    void doesNotSetTheIconAgain()
    {
        auto const box = CreateBox(AlertBox::Error);
        box->UpdateDefaultIcon();
        // QMessageBox replaces its layout when an icon is set. The second call of UpdateDefaultIcon() must keep the
        // layout.
        QPointer<QLayout> const grid(box->layout());
        box->UpdateDefaultIcon();
        QVERIFY(!grid.isNull());
        QCOMPARE(box->layout(), grid.data());
    }

    void setsTheIconAgainAfterItWasCleared()
    {
        auto const box = CreateBox(AlertBox::Question);
        box->UpdateDefaultIcon();
        box->setIconPixmap(QPixmap());
        box->UpdateDefaultIcon();
        QCOMPARE(ColorOf(box->iconPixmap()), QuestionColor);
    }

    void repolishesTheBoxBeforeAllItsDescendants()
    {
        RecordingStyle style;
        auto const box = CreateBox(AlertBox::Information);
        auto* const outer = new QWidget(box.get());
        auto* const inner = new QLabel(outer);
        box->setStyle(&style);
        style.calls.clear();
        box->Repolish();

        RecordingStyle::Calls expected = Repolishing(box.get());
        auto const widgets = box->findChildren<QWidget*>();
        for (QWidget const* const widget : widgets) {
            expected += Repolishing(widget);
        }
        QCOMPARE(style.calls, expected);
        QVERIFY(widgets.contains(inner));
    }

    void repolishesWidgetsThatHaveTheirOwnStyleWithTheStyleOfTheBox()
    {
        RecordingStyle boxStyle;
        RecordingStyle labelStyle;
        // Do not set a style sheet on this box: box.style() would then return a QStyleSheetStyle instead of boxStyle.
        AlertBox box;
        QLabel label(&box);
        label.setStyle(&labelStyle);
        box.setStyle(&boxStyle);
        QCOMPARE(label.style(), &labelStyle);
        boxStyle.calls.clear();
        labelStyle.calls.clear();
        box.Repolish();
        QCOMPARE(boxStyle.CallsFor(&label), Repolishing(&label));
        QVERIFY(labelStyle.calls.isEmpty());
    }

    void repolishingAppliesStyleSheetRulesForProperties()
    {
        auto const box = CreateBox(AlertBox::Information);
        QAbstractButton* const ok = box->button(QMessageBox::Ok);
        box->setStyleSheet(QStringLiteral("QPushButton[custom=\"yes\"] { min-width: 234px }"));
        ok->ensurePolished();
        ok->setProperty("custom", QStringLiteral("yes"));
        QVERIFY(ok->minimumWidth() < 234);
        box->Repolish();
        QVERIFY(ok->minimumWidth() >= 234);
    }

    void setsButtonPropertiesThenIconThenRepolishesTheBox()
    {
        RecordingStyle style;
        auto const box = CreateBox(AlertBox::Error);
        QAbstractButton const* const ok = box->button(QMessageBox::Ok);
        QAbstractButton const* const cancel = box->button(QMessageBox::Cancel);
        box->setStyle(&style);
        style.calls.clear();

        // QMessageBox deletes its old layout when it receives an icon. The lambda below therefore runs at the moment
        // when PrepareToShow() sets the icon.
        int callsBeforeIcon = -1;
        bool hadPropertiesBeforeIcon = false;
        connect(box->layout(), &QObject::destroyed, this, [&] {
            callsBeforeIcon = style.calls.size();
            hadPropertiesBeforeIcon = ok->property("buttonRole").isValid() && cancel->property("buttonRole").isValid();
        });
        box->PrepareToShow();
        QCOMPARE(ColorOf(box->iconPixmap()), ErrorColor);
        QVERIFY(hadPropertiesBeforeIcon);

        int const firstBoxCall = IndexOfFirstCall(style, box.get());
        QVERIFY(firstBoxCall >= callsBeforeIcon);
        for (int i = 0; i < firstBoxCall; ++i) {
            QWidget const* const widget = style.calls.at(i).widget;
            bool const isButton = widget == ok || widget == cancel;
            QCOMPARE(isButton, i < callsBeforeIcon);
        }
    }

    void repolishesAPreparedBoxOnce()
    {
        RecordingStyle style;
        auto const box = CreateBox(AlertBox::Error);
        box->PrepareToShow();
        box->setStyle(&style);
        style.calls.clear();
        box->PrepareToShow();
        QCOMPARE(style.CallsFor(box.get()), Repolishing(box.get()));
        auto const* const label = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
        QCOMPARE(style.CallsFor(label), Repolishing(label));
        // PrepareToShow() repolishes the button once for each of its three properties, and once together with the box.
        QAbstractButton const* const ok = box->button(QMessageBox::Ok);
        QCOMPARE(style.CallsFor(ok), Repolishing(ok) + Repolishing(ok) + Repolishing(ok) + Repolishing(ok));
    }

    void staticExecPreparesTheBox()
    {
        RecordingApplicationStyle const style;
        QColor color;
        CloseBoxLater(color);
        AlertBox::Exec(AlertBox::Error, QStringLiteral("title"), QStringLiteral("text"), QMessageBox::Ok);
        QCOMPARE(color, ErrorColor);
        QVERIFY(style.HasRepolishedABox());
    }

    void execPreparesTheBox()
    {
        RecordingApplicationStyle const style;
        QColor color;
        CloseBoxLater(color);
        CreateBox(AlertBox::Error)->Exec();
        QCOMPARE(color, ErrorColor);
        QVERIFY(style.HasRepolishedABox());
    }

    void showPreparesTheBox()
    {
        RecordingApplicationStyle const style;
        auto const box = CreateBox(AlertBox::Error);
        box->Show(true);
        QCOMPARE(ColorOf(box->iconPixmap()), ErrorColor);
        QVERIFY(style.HasRepolishedABox());
    }

private:
    std::unique_ptr<Resources> resources_;
};

ZQTUTIL_WIDGET_TEST_MAIN(AlertBoxIconTest)
#include "AlertBoxIconTest.moc"
