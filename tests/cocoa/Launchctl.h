#pragma once

#include <TestBed.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

namespace Zelkor::Testing
{

/// A launchctl of the test's own, on the search path and where the library launches it. It lists the jobs that it is
/// given and keeps a record of how it was called.
class Launchctl
{
public:
    Launchctl()
        : path_(qgetenv("PATH"))
    {
        QFile program(folder_.filePath(QStringLiteral("launchctl")));
        program.open(QIODevice::WriteOnly);
        program.write("#!/bin/sh\nfolder=${0%/*}\nif [ \"$1\" = list ]; then cat \"$folder/jobs\"; else\n"
                      "printf '%s|' \"$@\" >\"$folder/call.new\"; cat \"$folder/call.new\" >>\"$folder/calls\"; fi\n");
        program.setPermissions(program.permissions() | QFileDevice::ExeOwner);
        program.close();
        SetJobs(QByteArray());
        qputenv("PATH", folder_.path().toLocal8Bit() + ':' + path_);
        TestBed::SetLaunchctl(program.fileName());
    }

    ~Launchctl() { qputenv("PATH", path_); }

    Launchctl(Launchctl const&) = delete;
    Launchctl& operator=(Launchctl const&) = delete;

    void SetJobs(QByteArray const& list)
    {
        QFile jobs(folder_.filePath(QStringLiteral("jobs")));
        jobs.open(QIODevice::WriteOnly);
        jobs.write(list);
    }

    /// The arguments of the calls other than "list", each followed by "|".
    QString Calls() const
    {
        QFile calls(folder_.filePath(QStringLiteral("calls")));
        return calls.open(QIODevice::ReadOnly) ? QString::fromUtf8(calls.readAll()) : QString();
    }

private:
    QTemporaryDir folder_;
    QByteArray path_;
};

} // namespace Zelkor::Testing
