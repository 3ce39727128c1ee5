#pragma once

/// \file
/// The command line of the program.

#include <Base/IoPath.h>

#include <QtCore/QCommandLineParser>

#include <optional>
#include <string>
#include <vector>

namespace Zelkor
{
namespace Gallery
{

/// Parses the command line before an application object exists: the options decide whether the program needs a
/// QCoreApplication or a QApplication.
class CommandLine
{
public:
    CommandLine(int argc, char const* const* argv);

    /// Returns true if the program needs windows. Otherwise it only prints a report, the help, the version or an error.
    bool WantsWindow() const;

    /// If the user requested the help or the version, or if the command line has an error, prints the text and exits
    /// the program. Otherwise does nothing. Requires an application object.
    void ExitIfHandled();

    /// Returns the folder to report on in the terminal.
    std::optional<ioPath> Report() const;
    /// Returns the folder that the pages start with.
    std::optional<ioPath> Folder() const;
    /// Returns the folder to write pictures of the pages to.
    std::optional<QString> Screenshots() const;

private:
    std::optional<ioPath> PathValue(QCommandLineOption const& option) const;

    std::vector<std::string> native_;
    QStringList arguments_;
    QCommandLineParser parser_;
    QCommandLineOption report_;
    QCommandLineOption folder_;
    QCommandLineOption screenshots_;
    QCommandLineOption help_;
    QCommandLineOption version_;
    bool isValid_;
};

} // namespace Gallery
} // namespace Zelkor
