#pragma once

/// \file
/// Sets up logging for the gallery.

namespace Zelkor
{
namespace Gallery
{

/// Initialises glog and installs the message handlers. Call this function once, at the start of main().
///
/// glog writes no log files, and writes only FATAL records to the terminal. Pages use log sinks to show the records.
/// QtLogHandler logs Qt messages through glog, and forwards them to the message handler that was installed before.
///
/// \param program argv[0]. The string must remain valid until the program ends, because glog keeps the pointer.
void StartLogging(char const* program);

} // namespace Gallery
} // namespace Zelkor
