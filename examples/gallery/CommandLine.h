#pragma once

/// \file
/// The command line of the gallery program.

#include <Base/IoPath.h>

#include <QtCore/QCommandLineParser>

#include <optional>
#include <string>
#include <vector>

namespace Zelkor
{
namespace Gallery
{

/// Parses the command line. The constructor does not require an application object, because the options decide whether
/// the program creates a QCoreApplication or a QApplication.
class CommandLine
{
public:
    CommandLine(int argc, char const* const* argv);

    /// Returns true if the program needs windows. Returns false if the program only prints a report, the help, the
    /// version or an error.
    bool WantsWindow() const;

    /// If the command line requests the help or the version, prints the requested text and exits the program. If the
    /// command line has an error, prints an error message and exits the program. Otherwise does nothing. Requires an
    /// application object.
    void ExitIfHandled();

    /// Returns the folder whose entries the program lists with their sizes on the terminal. Returns std::nullopt if the
    /// option "--report" is not set.
    std::optional<ioPath> Report() const;
    /// Returns the folder that the pages use when the program starts. Returns std::nullopt if the option "--folder" is
    /// not set.
    std::optional<ioPath> Folder() const;
    /// Returns the folder into which the program writes pictures of the pages. Returns std::nullopt if the option
    /// "--screenshots" is not set.
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
