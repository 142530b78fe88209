// Waits until other threads or processes have made a condition true, so that tests need no fixed delays.
#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace Kest::Test {

/// Checks the condition every millisecond. Returns true when it holds, false if the time `deadline` is over.
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
