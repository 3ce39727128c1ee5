#pragma once

/// \file
/// The program's command line.

#include <Base/IoPath.h>

#include <QtCore/QCommandLineParser>

#include <optional>
#include <string>
#include <vector>

namespace Zelkor
{
namespace Gallery
{

/// Read before there is an application, because it decides which kind of application there will be.
class CommandLine
{
public:
    CommandLine(int argc, char const* const* argv);

    /// Whether the program opens windows. Else it prints something: a report, the help, the version or a mistake.
    bool WantsWindow() const;

    /// Prints the help, the version or what is wrong with the command line, and ends the program, if there is cause to.
    /// Needs an application.
    void ExitWhenAnswered();

    /// The folder to report on.
    std::optional<ioPath> Report() const;
    /// The folder to propose in the window.
    std::optional<ioPath> Folder() const;
    /// Where to write pictures of the pages.
    std::optional<QString> Screenshots() const;

private:
    std::optional<ioPath> PathOf(QCommandLineOption const& option) const;

    std::vector<std::string> native_;
    QStringList arguments_;
    QCommandLineParser parser_;
    QCommandLineOption report_;
    QCommandLineOption folder_;
    QCommandLineOption screenshots_;
    QCommandLineOption help_;
    QCommandLineOption version_;
    bool isUnderstood_;
};

} // namespace Gallery
} // namespace Zelkor
