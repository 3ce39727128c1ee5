#pragma once

#include <chrono>

namespace Zelkor::Testing
{

/// How long a test waits at most, in milliseconds. A working library finishes far earlier, even on a loaded machine.
constexpr int TimeoutMs = 60000;
constexpr std::chrono::milliseconds Timeout{TimeoutMs};

} // namespace Zelkor::Testing
