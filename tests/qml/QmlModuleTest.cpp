#include "ClickObserver.h"
#include "Models.h"
#include "ValueObject.h"
#include "Warnings.h"

#include <support/logs/LogCapture.h>

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtQml/QtQml>
#include <QtQuickTest/quicktest.h>

#include <cstdio>

using namespace Zelkor::Testing;

namespace
{

void PinEnvironment(QString const& folder)
{
    for (char const* const name : {"HOME", "TMPDIR", "XDG_RUNTIME_DIR"}) {
        qputenv(name, QFile::encodeName(folder));
    }
    qunsetenv("XDG_CACHE_HOME");
}

template <class Type>
QObject* New(QQmlEngine*, QJSEngine*)
{
    return new Type;
}

void RegisterTypes(char const* uri)
{
    qmlRegisterSingletonType<Warnings>(uri, 1, 0, "Warnings", New<Warnings>);
    qmlRegisterSingletonType<Models>(uri, 1, 0, "Models", New<Models>);
    qmlRegisterType<ClickObserver>(uri, 1, 0, "ClickObserver");
    qmlRegisterType<ValueObject>(uri, 1, 0, "ValueObject");
}

} // namespace

int main(int argc, char** argv)
{
    QTemporaryDir const folder;
    if (!folder.isValid()) {
        qFatal("No temporary folder: %s", qPrintable(folder.errorString()));
    }
    PinEnvironment(folder.path());
    google::AddLogSink(&LogWatch::Instance());
    Warnings::collect();
    RegisterTypes("Zelkor.Testing");

    int const failures = quick_test_main(argc, argv, "QmlModuleTest", nullptr);
    google::RemoveLogSink(&LogWatch::Instance());

    // Check for warnings that were logged outside the test functions, for example when a QML file was loaded.
    QString const warnings = Warnings::take();
    if (warnings.isEmpty()) {
        return failures;
    }
    std::fprintf(stderr, "Unexpected warnings:\n%s\n", qUtf8Printable(warnings));
    return failures + 1;
}
