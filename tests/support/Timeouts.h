#pragma once

#include <chrono>

namespace Zelkor::Testing
{

/// The longest time that a test waits for an event. Even on a loaded machine, a test reaches this limit only if the
/// library is broken.
constexpr int TimeoutMs = 60000; // milliseconds
constexpr std::chrono::milliseconds Timeout{TimeoutMs};

} // namespace Zelkor::Testing
