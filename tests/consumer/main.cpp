// An application that uses the installed library. It is built with Qt's keywords (signals, slots, emit) and without the
// compiler options of this project.

#include <Util/AsyncService.h>
#include <Util/FileUtils.h>
#include <Util/UnitsAndMeasures.h>

#include <QtCore/QCoreApplication>

#include <cstdio>

using Zelkor::Util::AsyncService;

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    AsyncService service;
    unsigned long long size = 0;
    AsyncService::Task* task =
        service.post([&size](AsyncService::Reporter*) { size = Zelkor::Util::GetPathSize("/etc/hostname"); });
    task->onFinished = [&size] {
        QString const text = Zelkor::Util::FormatFileSize(size, 0, Zelkor::Util::B, Zelkor::Util::Kilo1000);
        std::printf("%s\n", qPrintable(text));
        QCoreApplication::quit();
    };
    service.run(task);
    return QCoreApplication::exec();
}
