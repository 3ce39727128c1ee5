#pragma once

#include <TestBed.h>

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

#include <memory>

#include <sys/file.h>
#include <sys/stat.h>

namespace Zelkor::Testing
{

/// The arguments of one call of a program.
using Arguments = QStringList;

inline Arguments LoadArguments(QString const& propertyList)
{
    return {QStringLiteral("load"), QStringLiteral("-w"), propertyList};
}

inline Arguments UnloadArguments(QString const& propertyList)
{
    return {QStringLiteral("unload"), QStringLiteral("-w"), propertyList};
}

/// While this object exists, calls of launchctl, open and tccutil run fake programs instead, even if the caller uses an
/// absolute path. The script testbed/programs/program implements the three fake programs.
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

    /// Allows every user to run the fake programs.
    void GrantAccessToEveryone() const { chmod(QFile::encodeName(folder_.path()).constData(), 0777); }

    /// Prevents the fake programs from finishing while the returned object exists.
    std::unique_ptr<QFile> Lock() const
    {
        auto lock = std::make_unique<QFile>(folder_.filePath(QStringLiteral("lock")));
        lock->open(QIODevice::WriteOnly);
        flock(lock->handle(), LOCK_EX);
        return lock;
    }

    /// Sets the output of "launchctl list".
    void SetJobs(QByteArray const& list) { SetState(QLatin1String("launchctl"), list); }

    /// Replaces the content of the file in which the fake program \a program stores its state.
    void SetState(QLatin1String program, QByteArray const& state)
    {
        QFile file(File(program) + QLatin1String(".state"));
        file.open(QIODevice::WriteOnly);
        file.write(state);
    }

    QByteArray State(QLatin1String program) const { return Content(File(program) + QLatin1String(".state")); }

    /// Returns the arguments of each finished call of \a program, in order.
    QList<Arguments> Calls(QLatin1String program) const
    {
        // For each call, the program writes one line that contains the arguments, each followed by "|".
        QList<Arguments> calls;
        QStringList const lines = QString::fromUtf8(Content(File(program) + QLatin1String(".calls")))
                                      .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        for (QString const& line : lines) {
            calls += line.chopped(1).split(QLatin1Char('|'));
        }
        return calls;
    }

    /// Returns the arguments of each finished call of launchctl, in order. Omits the calls to "launchctl list".
    QList<Arguments> LaunchctlCalls() const
    {
        QList<Arguments> calls = Calls(QLatin1String("launchctl"));
        calls.removeAll(Arguments{QStringLiteral("list")});
        return calls;
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
