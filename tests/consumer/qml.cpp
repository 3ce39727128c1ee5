// Runs a QML file that imports the installed QML module. QML_IMPORT_DIR is the import path that the installed CMake or
// pkg-config files specify.

#include <QtCore/QCoreApplication>
#include <QtQml/QQmlApplicationEngine>

#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral(QML_IMPORT_DIR));
    engine.load(QCoreApplication::arguments().at(1));
    if (engine.rootObjects().isEmpty()) {
        return 1;
    }
    std::printf("%s\n", qPrintable(engine.rootObjects().at(0)->property("text").toString()));
    return 0;
}
