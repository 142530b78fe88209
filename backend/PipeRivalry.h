// Decides when to replace a pipe of another process at the agent's path.
#pragma once

#include <algorithm>
#include <chrono>

namespace Kest::Settings {

/// Two agents with different settings folders use the same path. To keep them from replacing each other's
/// pipe every second, the delay before a replacement doubles each time, up to 60 s. Not synchronised.
class PipeRivalry {
public:
    using Clock = std::chrono::steady_clock;

    static constexpr std::chrono::seconds kMaxDelay{60};
    /// The delay is reset after our pipe was at the path for this time: three maximum delays.
    static constexpr std::chrono::seconds kStable{180};

    /// Records that our pipe is at the path.
    void made(Clock::time_point now)
    {
        madeAt = now;
        isCounted = false;
    }

    /// Returns whether the pipe may be created again; called while it is lost. `isReadByAnother`: another
    /// process reads a pipe at the path now. Anything else at the path is replaced without a delay.
    bool mayReplace(bool isReadByAnother, Clock::time_point now)
    {
        if (!isReadByAnother)
            return true;
        if (!isCounted) {
            isCounted = true;
            replacements = now - madeAt < kStable ? replacements + 1 : 1;
            retryAt = now + delay();
        }
        return now >= retryAt;
    }

    /// Returns how often in a row another process replaced our pipe, including this loss; 0 if this loss has
    /// another cause.
    int losses() const { return isCounted ? replacements : 0; }

private:
    // No delay after the first loss: an agent that starts and ends may cause it.
    std::chrono::seconds delay() const
    {
        if (replacements < 2)
            return std::chrono::seconds(0);
        constexpr int kLastDoubling = 6;
        return std::min(kMaxDelay, std::chrono::seconds(1 << std::min(replacements - 1, kLastDoubling)));
    }

    Clock::time_point madeAt;
    Clock::time_point retryAt;
    int replacements = 0;
    bool isCounted = false; // this loss
};

} // namespace Kest::Settings
