#include <unit/files/TemporaryDirPlay.h>

#include <support/logs/LogCapture.h>
#include <support/processes/Plays.h>
#include <support/sandbox/OrdinaryUser.h>
#include <support/sandbox/TemporaryFolders.h>

#include <Util/TemporaryDir.h>

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

#include <boost/exception/all.hpp>

#include <glog/logging.h>

#include <cstdio>
#include <exception>
#include <future>
#include <map>
#include <memory>
#include <stdexcept>
#include <vector>

#include <sys/prctl.h>

namespace Zelkor::Testing
{
namespace
{

using Util::TemporaryDir;

constexpr int Timeout = 60000; // ms

void Tell(QJsonObject const& facts)
{
    QByteArray const line = QJsonDocument(facts).toJson(QJsonDocument::Compact) + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fflush(stdout);
}

QJsonArray Complaints(LogCapture const& log)
{
    QJsonArray complaints;
    QVector<LogLine> const lines = log.Lines();
    for (LogLine const& line : lines) {
        if (line.severity != google::GLOG_INFO) {
            complaints += QString::fromLatin1(google::GetLogSeverityName(line.severity)) + QLatin1Char(' ') +
                          line.file + QLatin1Char(' ') + line.text;
        }
    }
    return complaints;
}

QJsonObject FactsOf(TemporaryDir const& directory)
{
    return {{QStringLiteral("valid"), directory.isValid()},
            {QStringLiteral("path"), directory.path()},
            {QStringLiteral("file"), directory.filePath(QStringLiteral("file"))},
            {QStringLiteral("error"), directory.errorString()},
            {QStringLiteral("isThere"), !directory.path().isEmpty() && Exists(directory.path())}};
}

QJsonObject FactsOf(boost::wrapexcept<std::logic_error> const& error)
{
    return {{QStringLiteral("thrown"), QString::fromUtf8(error.what())},
            {QStringLiteral("file"), QString::fromUtf8(*boost::get_error_info<boost::throw_file>(error))},
            {QStringLiteral("function"), QString::fromUtf8(*boost::get_error_info<boost::throw_function>(error))},
            {QStringLiteral("line"), *boost::get_error_info<boost::throw_line>(error)}};
}

class StepTaker
{
public:
    void Take(QString const& step)
    {
        QString const verb = step.section(QLatin1Char('='), 0, 0);
        QString const object = step.section(QLatin1Char('='), 1);
        auto const known = Steps().find(verb);
        Check(known != Steps().end(), step);
        (this->*known->second)(object);
    }

private:
    using Step = void (StepTaker::*)(QString const& object);

    static std::map<QString, Step> const& Steps()
    {
        static std::map<QString, Step> const steps{
            {QStringLiteral("no application"), &StepTaker::DropApplication},
            {QStringLiteral("ordinary user"), &StepTaker::DropPrivileges},
            {QStringLiteral("name"), &StepTaker::SetName},
            {QStringLiteral("version"), &StepTaker::SetVersion},
            {QStringLiteral("temporary folder"), &StepTaker::SetTemporaryFolder},
            {QStringLiteral("make"), &StepTaker::Make},
            {QStringLiteral("make on threads"), &StepTaker::MakeOnThreads},
            {QStringLiteral("put file"), &StepTaker::PutFile},
            {QStringLiteral("put locked folder"), &StepTaker::PutLockedFolder},
            {QStringLiteral("remove"), &StepTaker::Remove},
            {QStringLiteral("await"), &StepTaker::Await},
        };
        return steps;
    }

    void DropApplication(QString const& /*unused*/) { application_.reset(); }

    void DropPrivileges(QString const& /*unused*/)
    {
        QCoreApplication::applicationFilePath(); // kept; it could not be asked for later
        Check(BecomeOrdinaryUser(), QStringLiteral("user"));
        prctl(PR_SET_DUMPABLE, 1); // the leak sanitizer looks at the process
    }

    void SetName(QString const& name) { QCoreApplication::setApplicationName(name); }

    void SetVersion(QString const& version) { QCoreApplication::setApplicationVersion(version); }

    void SetTemporaryFolder(QString const& path) { qputenv("TMPDIR", QFile::encodeName(path)); }

    void Make(QString const& /*unused*/)
    {
        LogCapture const log;
        try {
            made_.push_back(std::make_unique<TemporaryDir>());
        } catch (boost::wrapexcept<std::logic_error> const& error) {
            Tell(FactsOf(error));
            return;
        }
        QJsonObject facts = FactsOf(*made_.back());
        facts[QStringLiteral("complaints")] = Complaints(log);
        Tell(facts);
    }

    void MakeOnThreads(QString const& count)
    {
        std::promise<void> start;
        std::shared_future<void> const started = start.get_future().share();
        std::vector<std::future<std::unique_ptr<TemporaryDir>>> results;
        results.reserve(count.toUInt());
        for (int i = 0; i < count.toInt(); ++i) {
            results.push_back(std::async(std::launch::async, [started] {
                started.wait();
                auto directory = std::make_unique<TemporaryDir>();
                MakeFile(directory->filePath(QStringLiteral("file")));
                return directory;
            }));
        }
        start.set_value();
        made_.reserve(results.size());
        for (auto& result : results) {
            made_.push_back(result.get());
        }
        for (auto const& directory : made_) {
            QJsonObject facts = FactsOf(*directory);
            facts[QStringLiteral("hasFile")] = Exists(directory->filePath(QStringLiteral("file")));
            Tell(facts);
        }
    }

    void PutFile(QString const& name) { MakeFile(made_.back()->filePath(name)); }

    void PutLockedFolder(QString const& name)
    {
        QString const folder = made_.back()->filePath(name);
        MakeFolder(folder);
        MakeFile(folder + QStringLiteral("/file"));
        Chmod(folder, 0555);
    }

    void Remove(QString const& /*unused*/)
    {
        bool const removed = made_.back()->remove();
        QJsonObject facts = FactsOf(*made_.back());
        facts[QStringLiteral("removed")] = removed;
        Tell(facts);
    }

    void Await(QString const& /*unused*/)
    {
        for (int read = std::getchar(); read != '\n' && read != EOF;) {
            read = std::getchar();
        }
    }

    int argumentCount_ = 1;
    char name_[5] = "play";
    char* arguments_[2] = {name_, nullptr};
    std::unique_ptr<QCoreApplication> application_ = std::make_unique<QCoreApplication>(argumentCount_, arguments_);
    std::vector<std::unique_ptr<TemporaryDir>> made_;
};

} // namespace

int TakeSteps(int argc, char** argv)
{
    google::InitGoogleLogging(argv[0]);
    google::AddLogSink(&LogWatch::Instance());
    for (int severity = google::GLOG_INFO; severity < google::NUM_SEVERITIES; ++severity) {
        google::SetLogDestination(severity, "");
    }
    int result = 0;
    try {
        StepTaker taker;
        for (int i = 2; i < argc; ++i) {
            taker.Take(QString::fromUtf8(argv[i]));
        }
    } catch (std::exception const& error) {
        std::fprintf(stderr, "%s\n", error.what());
        result = 1;
    }
    google::RemoveLogSink(&LogWatch::Instance());
    return result;
}

Made MadeFrom(QJsonObject const& facts)
{
    return {facts.value(QStringLiteral("valid")).toBool(),
            facts.value(QStringLiteral("path")).toString(),
            facts.value(QStringLiteral("file")).toString(),
            facts.value(QStringLiteral("error")).toString(),
            facts.value(QStringLiteral("isThere")).toBool(),
            facts.value(QStringLiteral("complaints")).toVariant().toStringList()};
}

Player::Player(QString const& temporaryFolder, QStringList const& steps, QString const& program,
               QString const& currentFolder)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TMPDIR"), temporaryFolder);
    process_.setProcessEnvironment(environment);
    process_.setWorkingDirectory(currentFolder);
    process_.start(program, QStringList(QString::fromLatin1(playArgument)) + steps);
    Check(process_.waitForStarted(Timeout), process_.errorString());
}

Player::~Player()
{
    Kill();
}

QJsonObject Player::Hear()
{
    while (!process_.canReadLine() && process_.waitForReadyRead(Timeout)) {
    }
    QJsonDocument const line = QJsonDocument::fromJson(process_.readLine());
    Check(line.isObject(), Errors());
    return line.object();
}

Made Player::HearMade()
{
    return MadeFrom(Hear());
}

void Player::GoOn()
{
    process_.write("\n");
    Check(process_.waitForBytesWritten(Timeout), Errors());
}

QString Player::End()
{
    bool const ended = process_.state() == QProcess::NotRunning || process_.waitForFinished(Timeout);
    bool const well = ended && process_.exitStatus() == QProcess::NormalExit && process_.exitCode() == 0;
    QString errors = Errors();
    Check(well && process_.readAllStandardOutput().isEmpty(), errors);
    return errors;
}

void Player::Kill()
{
    process_.kill();
    process_.waitForFinished(Timeout);
}

QString Player::Errors()
{
    return QStringLiteral("The other process said: ") + QString::fromUtf8(process_.readAllStandardError());
}

} // namespace Zelkor::Testing
