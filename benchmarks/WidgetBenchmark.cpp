// Message boxes built, shown and closed, with and without a style sheet of the application; a style property on a
// widget in a deep tree; and a hover over groups of growing size.
//
// The floor of a box is a plain dialog with a label and two buttons. The peers are Qt's own box, which AlertBox is, and
// KDE's, which a user would pick who wants more than Qt's.

#include "Support.h"

#include <Util/AlertBox.h>
#include <Util/HoverGroup.h>
#include <Util/StyleUtils.h>

#include <KMessageDialog>

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtGui/QIcon>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QStyle>
#include <QtWidgets/QVBoxLayout>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace Zelkor::Benchmarks
{
namespace
{

QString Title()
{
    return QStringLiteral("Export");
}

QString Text()
{
    return QStringLiteral("The film could not be exported: the disc is full.");
}

template <class Dialog>
void ShowAndClose(Dialog& dialog)
{
    dialog.show();
    QCoreApplication::processEvents();
    dialog.close();
}

struct PlainDialogWay
{
    static void Run()
    {
        QDialog dialog;
        dialog.setWindowTitle(Title());
        auto* const layout = new QVBoxLayout(&dialog);
        layout->addWidget(new QLabel(Text()));
        layout->addWidget(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel));
        ShowAndClose(dialog);
    }
};

struct MessageBoxWay
{
    static void Run()
    {
        QMessageBox box(QMessageBox::Critical, Title(), Text(), QMessageBox::Ok | QMessageBox::Cancel);
        ShowAndClose(box);
    }
};

struct KMessageDialogWay
{
    static void Run()
    {
        KMessageDialog dialog(KMessageDialog::WarningContinueCancel, Text()); // of its boxes the one with two buttons
        dialog.setCaption(Title());
        dialog.setIcon(QIcon(QStringLiteral(":/MessageBox/error_icon.png"))); // its own is in a theme, if there is one
        ShowAndClose(dialog);
    }
};

struct AlertBoxWay
{
    static void Run()
    {
        Util::AlertBox box(Util::AlertBox::Error, Title(), Text(), QMessageBox::Ok | QMessageBox::Cancel);
        box.PrepareToShow();
        ShowAndClose(box);
    }
};

/// A style sheet of the kind that applications have: a base for every widget, and looks of some.
QString CommonSheet()
{
    return QStringLiteral("QWidget { color: #202124; font-size: 13px }"
                          "QDialog { background: white }"
                          "QLineEdit, QTextEdit, QListView { border: 1px solid gray }"
                          "QPushButton { padding: 4px 12px; border: 1px solid gray }"
                          "QPushButton[styleHint=\"activeButton\"] { background: #2a6fdb }"
                          "QDialog[Level=\"Error\"] { border: 1px solid red }");
}

/// The gallery's, which is all about names and properties.
QString HouseSheet()
{
    QFile file(QStringLiteral(":/house.qss"));
    if (!file.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("the house style is not in the resources");
    }
    QString const colour = QStringLiteral("#2a6fdb");
    return QString::fromUtf8(file.readAll()).replace(QRegularExpression(QStringLiteral("@\\w+")), colour);
}

/// Gives the application a style sheet, for as long as it lives.
class ApplicationStyleSheet
{
public:
    explicit ApplicationStyleSheet(QString const& sheet) { qApp->setStyleSheet(sheet); }

    ~ApplicationStyleSheet() { qApp->setStyleSheet(QString()); }

    ApplicationStyleSheet(ApplicationStyleSheet const&) = delete;
    ApplicationStyleSheet& operator=(ApplicationStyleSheet const&) = delete;
};

template <class Way>
void Box(benchmark::State& state)
{
    for (auto _ : state) {
        Way::Run();
    }
}

template <class Way, QString (*Sheet)()>
void StyledBox(benchmark::State& state)
{
    ApplicationStyleSheet const sheet(Sheet());
    for (auto _ : state) {
        Way::Run();
    }
}

/// The innermost of \a depth widgets, each in the one before.
QWidget* Innermost(QWidget* outermost, int depth)
{
    QWidget* widget = outermost;
    for (int i = 0; i < depth; ++i) {
        widget = new QWidget(widget);
    }
    return widget;
}

constexpr int Depth = 200;

void StyleByApplyWidgetStyle(benchmark::State& state)
{
    ApplicationStyleSheet const sheet(CommonSheet());
    QWidget window;
    QWidget* const widget = Innermost(&window, Depth);
    window.show();
    bool odd = false;
    for ([[maybe_unused]] auto _ : state) {
        odd = !odd;
        Util::ApplyWidgetStyle(widget, odd ? QStringLiteral("Error") : QStringLiteral("Warning"), "Level");
    }
}

void StyleByHand(benchmark::State& state)
{
    ApplicationStyleSheet const sheet(CommonSheet());
    QWidget window;
    QWidget* const widget = Innermost(&window, Depth);
    window.show();
    bool odd = false;
    for ([[maybe_unused]] auto _ : state) {
        odd = !odd;
        widget->setProperty("Level", odd ? QStringLiteral("Error") : QStringLiteral("Warning"));
        widget->style()->unpolish(widget);
        widget->style()->polish(widget);
    }
}

/// Enters and leaves the first of \a widgets.
void Hover(QWidget& widget)
{
    QEvent enter(QEvent::Enter);
    QCoreApplication::sendEvent(&widget, &enter);
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(&widget, &leave);
}

std::vector<std::unique_ptr<QWidget>> MakeWidgets(int count)
{
    std::vector<std::unique_ptr<QWidget>> widgets;
    widgets.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        widgets.push_back(std::make_unique<QWidget>());
    }
    return widgets;
}

template <int Count>
void HoverByGroup(benchmark::State& state)
{
    auto const widgets = MakeWidgets(Count);
    Util::HoverGroup group(nullptr);
    for (auto const& widget : widgets) {
        group.addItem(widget.get());
    }
    for (auto _ : state) {
        Hover(*widgets.front());
    }
}

template <int Count>
void HoverOneByOne(benchmark::State& state)
{
    auto const widgets = MakeWidgets(Count);
    for (auto _ : state) {
        for (auto const& widget : widgets) {
            Hover(*widget);
        }
    }
}

template <class Way>
void RegisterBoxes(std::string const& way)
{
    benchmark::RegisterBenchmark(("MessageBox/" + way).c_str(), Box<Way>)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("StyledMessageBox/" + way).c_str(), StyledBox<Way, CommonSheet>)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("HouseMessageBox/" + way).c_str(), StyledBox<Way, HouseSheet>)
        ->Unit(benchmark::kMillisecond);
}

template <int Count>
void RegisterHover()
{
    std::string const job = "Hover" + std::to_string(Count);
    benchmark::RegisterBenchmark((job + "/HoverGroup").c_str(), HoverByGroup<Count>);
    benchmark::RegisterBenchmark((job + "/OneByOne").c_str(), HoverOneByOne<Count>);
}

} // namespace

void RegisterAll()
{
    RegisterBoxes<AlertBoxWay>("AlertBox");
    RegisterBoxes<PlainDialogWay>("PlainDialog");
    RegisterBoxes<MessageBoxWay>("QMessageBox");
    RegisterBoxes<KMessageDialogWay>("KMessageDialog");
    benchmark::RegisterBenchmark("StyleProperty/ApplyWidgetStyle", StyleByApplyWidgetStyle);
    benchmark::RegisterBenchmark("StyleProperty/ByHand", StyleByHand);
    RegisterHover<10>();
    RegisterHover<100>();
}

} // namespace Zelkor::Benchmarks

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication const application(argc, argv);
    Zelkor::Benchmarks::RegisterAll();
    return Zelkor::Benchmarks::RunBenchmarks(argc, argv);
}
