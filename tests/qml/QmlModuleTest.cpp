#include "ClickObserver.h"
#include "Complaints.h"
#include "Dial.h"
#include "Models.h"

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
    qmlRegisterSingletonType<Complaints>(uri, 1, 0, "Complaints", New<Complaints>);
    qmlRegisterSingletonType<Models>(uri, 1, 0, "Models", New<Models>);
    qmlRegisterType<ClickObserver>(uri, 1, 0, "ClickObserver");
    qmlRegisterType<Dial>(uri, 1, 0, "Dial");
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
    Complaints::watch();
    RegisterTypes("Zelkor.Testing");

    int const failures = quick_test_main(argc, argv, "QmlModuleTest", nullptr);
    google::RemoveLogSink(&LogWatch::Instance());

    // What was said outside the test functions: while a file was loaded, or its objects ended.
    QString const complaints = Complaints::take();
    if (complaints.isEmpty()) {
        return failures;
    }
    std::fprintf(stderr, "Unexpected:\n%s\n", qUtf8Printable(complaints));
    return failures + 1;
}
