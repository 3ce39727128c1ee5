// Measures the classes AlertBox and HoverGroup and the function ApplyWidgetStyle(). For comparison, the benchmark also
// measures alternatives to each of them:
// - AlertBox: creates, shows and closes a message box, with and without a style sheet. The alternatives are QMessageBox
//   (the base class of AlertBox), KMessageDialog, and a plain dialog with only a label and two buttons. The time of
//   the plain dialog is the lower bound.
// - ApplyWidgetStyle(): sets a style property of a widget with 200 ancestors. The alternative is handwritten code.
// - HoverGroup: hovers over groups of 10 and 100 widgets. The alternative is a loop that sends the same events. The
//   time of the loop is the lower bound.

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

struct PlainDialogRunner
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

struct MessageBoxRunner
{
    static void Run()
    {
        QMessageBox box(QMessageBox::Critical, Title(), Text(), QMessageBox::Ok | QMessageBox::Cancel);
        ShowAndClose(box);
    }
};

struct KMessageDialogRunner
{
    static void Run()
    {
        KMessageDialog dialog(KMessageDialog::WarningContinueCancel, Text()); // two buttons, as in the other boxes
        dialog.setCaption(Title());
        // Set an icon from the resources: the default icon requires an icon theme.
        dialog.setIcon(QIcon(QStringLiteral(":/MessageBox/error_icon.png")));
        ShowAndClose(dialog);
    }
};

struct AlertBoxRunner
{
    static void Run()
    {
        Util::AlertBox box(Util::AlertBox::Error, Title(), Text(), QMessageBox::Ok | QMessageBox::Cancel);
        box.PrepareToShow();
        ShowAndClose(box);
    }
};

/// Returns a style sheet that is typical of applications. It has rules for all widgets and rules for some classes.
QString CommonSheet()
{
    return QStringLiteral("QWidget { color: #202124; font-size: 13px }"
                          "QDialog { background: white }"
                          "QLineEdit, QTextEdit, QListView { border: 1px solid gray }"
                          "QPushButton { padding: 4px 12px; border: 1px solid gray }"
                          "QPushButton[styleHint=\"activeButton\"] { background: #2a6fdb }"
                          "QDialog[Level=\"Error\"] { border: 1px solid red }");
}

/// Returns the style sheet of the gallery. Most of its rules select widgets by their object names and properties.
QString HouseSheet()
{
    QFile file(QStringLiteral(":/house.qss"));
    if (!file.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("The resource house.qss is missing");
    }
    QString const colour = QStringLiteral("#2a6fdb");
    return QString::fromUtf8(file.readAll()).replace(QRegularExpression(QStringLiteral("@\\w+")), colour);
}

/// Sets a style sheet on the application and removes it in the destructor.
class ApplicationStyleSheet
{
public:
    explicit ApplicationStyleSheet(QString const& sheet) { qApp->setStyleSheet(sheet); }

    ~ApplicationStyleSheet() { qApp->setStyleSheet(QString()); }

    ApplicationStyleSheet(ApplicationStyleSheet const&) = delete;
    ApplicationStyleSheet& operator=(ApplicationStyleSheet const&) = delete;
};

template <class Runner>
void Box(benchmark::State& state)
{
    for (auto _ : state) {
        Runner::Run();
    }
}

template <class Runner, QString (*Sheet)()>
void StyledBox(benchmark::State& state)
{
    ApplicationStyleSheet const sheet(Sheet());
    for (auto _ : state) {
        Runner::Run();
    }
}

/// Creates \a depth nested widgets and returns the innermost widget. The first new widget is a child of
/// \a outermost.
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

/// Sends an enter event and a leave event to \a widget.
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

template <class Runner>
void RegisterBoxes(std::string const& name)
{
    benchmark::RegisterBenchmark(("MessageBox/" + name).c_str(), Box<Runner>)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("StyledMessageBox/" + name).c_str(), StyledBox<Runner, CommonSheet>)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("HouseMessageBox/" + name).c_str(), StyledBox<Runner, HouseSheet>)
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
    RegisterBoxes<AlertBoxRunner>("AlertBox");
    RegisterBoxes<PlainDialogRunner>("PlainDialog");
    RegisterBoxes<MessageBoxRunner>("QMessageBox");
    RegisterBoxes<KMessageDialogRunner>("KMessageDialog");
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
