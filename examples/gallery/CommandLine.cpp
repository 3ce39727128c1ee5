#include "CommandLine.h"

#include "Terminal.h"

#include <Util/StringUtils.h>

#include <QtCore/QCoreApplication>

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace Zelkor::Gallery
{
namespace
{

struct Text
{
    Q_DECLARE_TR_FUNCTIONS(GalleryCommandLine)
};

// Returns the value of an argument of the form "--option=value". Returns an argument of any other form unchanged.
std::string OptionValue(std::string const& argument)
{
    bool const isOption = argument.compare(0, 2, "--") == 0;
    return isOption ? argument.substr(argument.find('=') + 1) : argument;
}

} // namespace

CommandLine::CommandLine(int argc, char const* const* argv)
    : native_(argv, argv + argc)
    , report_(QStringLiteral("report"), Text::tr("Print the sizes of the entries of <folder>; needs no display."),
              Text::tr("folder"))
    , folder_(QStringLiteral("folder"), Text::tr("Start the pages with <folder>."), Text::tr("folder"))
    , screenshots_(QStringLiteral("screenshots"),
                   Text::tr("Write pictures of all pages into <dir>, light and dark; needs no display. The pages use "
                            "the folder given by --folder, or /usr/share."),
                   Text::tr("dir"))
    , help_({QStringLiteral("h"), QStringLiteral("help")}, Text::tr("Print this help."))
    , version_({QStringLiteral("v"), QStringLiteral("version")}, Text::tr("Print the version."))
{
    std::transform(native_.begin(), native_.end(), std::back_inserter(arguments_), Util::Utf8ToQString);
    parser_.setApplicationDescription(Text::tr("Demonstrates the classes and functions of the ZQtUtil library."));
    parser_.addOptions({report_, folder_, screenshots_, help_, version_});
    isValid_ = parser_.parse(arguments_) && parser_.positionalArguments().isEmpty();
}

bool CommandLine::WantsWindow() const
{
    return isValid_ && !parser_.isSet(report_) && !parser_.isSet(help_) && !parser_.isSet(version_);
}

void CommandLine::ExitIfHandled()
{
    parser_.process(arguments_);
    if (parser_.isSet(help_)) {
        parser_.showHelp(EXIT_SUCCESS);
    }
    if (parser_.isSet(version_)) {
        parser_.showVersion();
    }
    if (!isValid_) {
        PrintError(Text::tr("Unexpected argument “%1”.").arg(parser_.positionalArguments().constFirst()));
        std::exit(EXIT_FAILURE);
    }
}

std::optional<ioPath> CommandLine::Report() const
{
    return PathValue(report_);
}

std::optional<ioPath> CommandLine::Folder() const
{
    return PathValue(folder_);
}

std::optional<QString> CommandLine::Screenshots() const
{
    return parser_.isSet(screenshots_) ? std::make_optional(parser_.value(screenshots_)) : std::nullopt;
}

// Returns the value of the option as a path with its original bytes. QCommandLineParser returns a QString, which cannot
// represent bytes that are not valid UTF-8. Therefore, this function searches the original arguments for the value.
std::optional<ioPath> CommandLine::PathValue(QCommandLineOption const& option) const
{
    if (!parser_.isSet(option)) {
        return std::nullopt;
    }
    QString const text = parser_.value(option);
    for (std::string const& argument : native_) {
        std::string const value = OptionValue(argument);
        if (Util::Utf8ToQString(value) == text) {
            return ioPath(value);
        }
    }
    return ioPath(Util::QStringToUtf8(text));
}

} // namespace Zelkor::Gallery
