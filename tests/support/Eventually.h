// Waiting for what other threads and processes do: for a condition with a deadline, never for a fixed time.
#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace Kest::Test {

/// Checks every millisecond; returns false when the condition does not hold at the deadline.
inline bool eventually(const std::function<bool()>& condition,
                       std::chrono::milliseconds deadline = std::chrono::seconds(20))
{
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

} // namespace Kest::Test
