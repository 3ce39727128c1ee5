#pragma once

/// \file
/// The application's use of glog.

namespace Zelkor
{
namespace Gallery
{

/// Starts glog without log files and, below FATAL, without output: what the library logs is shown where it matters.
/// Qt's messages go there too, and then where they would have gone.
/// Called once, with main()'s \a program, which must stay valid.
void StartLogging(char const* program);

} // namespace Gallery
} // namespace Zelkor
