#pragma once

#include <TestBed.h>

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayList>
#include <QtCore/QFile>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

#include <initializer_list>
#include <memory>

#include <sys/file.h>
#include <sys/stat.h>

namespace Zelkor::Testing
{

/// launchctl, open and tccutil of the test's own, on the search path and where the library runs them by their full
/// paths, until this ends. tests/cocoa/testbed/programs tells what they do.
class Programs
{
public:
    Programs()
        : path_(qgetenv("PATH"))
    {
        for (char const* const name : {"launchctl", "open", "tccutil"}) {
            QFile::copy(QStringLiteral(ZQTUTIL_TESTBED_PROGRAM), File(QLatin1String(name)));
            SetState(QLatin1String(name), QByteArray());
        }
        qputenv("PATH", QFile::encodeName(folder_.path()) + ':' + path_);
        TestBed::SetProgramsFolder(folder_.path());
    }

    ~Programs()
    {
        qputenv("PATH", path_);
        TestBed::SetProgramsFolder(QString());
    }

    Programs(Programs const&) = delete;
    Programs& operator=(Programs const&) = delete;

    /// Every user may run them.
    void AdmitEverybody() const { chmod(QFile::encodeName(folder_.path()).constData(), 0777); }

    /// Nothing that is called ends while the result lives.
    std::unique_ptr<QFile> Hold() const
    {
        auto lock = std::make_unique<QFile>(folder_.filePath(QStringLiteral("lock")));
        lock->open(QIODevice::WriteOnly);
        flock(lock->handle(), LOCK_EX);
        return lock;
    }

    /// What launchctl lists.
    void SetJobs(QByteArray const& list) { SetState(QLatin1String("launchctl"), list); }

    /// What \a program keeps.
    void SetState(QLatin1String program, QByteArray const& state)
    {
        QFile file(File(program) + QLatin1String(".state"));
        file.open(QIODevice::WriteOnly);
        file.write(state);
    }

    QByteArray State(QLatin1String program) const { return Content(File(program) + QLatin1String(".state")); }

    /// The calls of \a program that have ended, a line each, each argument followed by "|".
    QByteArray Calls(QLatin1String program) const { return Content(File(program) + QLatin1String(".calls")); }

    /// The calls of launchctl but "list", joined.
    QString LaunchctlCalls() const
    {
        QByteArrayList calls = Calls(QLatin1String("launchctl")).split('\n');
        calls.removeAll("list|");
        return QString::fromUtf8(calls.join());
    }

private:
    QString File(QLatin1String program) const { return folder_.filePath(program); }

    static QByteArray Content(QString const& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir folder_;
    QByteArray path_;
};

} // namespace Zelkor::Testing
