#pragma once

/// \file
/// Sets up logging for the gallery.

namespace Zelkor
{
namespace Gallery
{

/// Initialises glog and installs the message handlers. Call it once, at the start of main().
///
/// glog writes no files, and writes to the terminal only at FATAL: the pages show the records through log sinks. Qt
/// messages go to glog and then to the handler that was installed before.
///
/// \param program argv[0]. glog keeps the pointer, so it must stay valid.
void StartLogging(char const* program);

} // namespace Gallery
} // namespace Zelkor
