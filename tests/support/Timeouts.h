#pragma once

#include <chrono>

namespace Zelkor::Testing
{

/// The longest time that a test waits. Only a broken library reaches it, even on a loaded machine.
constexpr int TimeoutMs = 60000; // milliseconds
constexpr std::chrono::milliseconds Timeout{TimeoutMs};

} // namespace Zelkor::Testing
