// Decides when to replace another process's pipe at the path of the agent's pipe.
#pragma once

#include <algorithm>
#include <chrono>

namespace Kest::Settings {

/// Two agents with different settings folders use the same path for their pipes. A delay before a replacement
/// keeps them from replacing each other's pipe every second. There is no delay before the first replacement.
/// The next delays are 2, 4, 8 seconds and so on, up to 60. Not synchronised.
class PipeRivalry {
public:
    using Clock = std::chrono::steady_clock;

    static constexpr std::chrono::seconds kMaxDelay{60};
    /// If our pipe was at the path for this time, which is three times `kMaxDelay`, the delay is 0 again.
    static constexpr std::chrono::seconds kStable{180};

    /// Records that our pipe was created at the path.
    void pipeCreated(Clock::time_point now)
    {
        createdAt = now;
        isCounted = false;
    }

    /// Returns whether our pipe may be created again. Call this function repeatedly after our pipe was
    /// removed from the path, until it returns true. `isReadByAnother` means that another process now reads a
    /// pipe at the path. If it is false, there is no delay.
    bool mayReplace(bool isReadByAnother, Clock::time_point now)
    {
        if (!isReadByAnother)
            return true;
        if (!isCounted) {
            isCounted = true;
            replacements = now - createdAt < kStable ? replacements + 1 : 1;
            retryAt = now + delay();
        }
        return now >= retryAt;
    }

    /// Returns how many times in succession another process has replaced our pipe, including the present
    /// loss. Returns 0 if our pipe is at the path, or was lost for another reason.
    int losses() const { return isCounted ? replacements : 0; }

private:
    // No delay after the first loss, because its cause may be an agent that has ended since.
    std::chrono::seconds delay() const
    {
        if (replacements < 2)
            return std::chrono::seconds(0);
        constexpr int kLastDoubling = 6;
        return std::min(kMaxDelay, std::chrono::seconds(1 << std::min(replacements - 1, kLastDoubling)));
    }

    Clock::time_point createdAt;
    Clock::time_point retryAt;
    int replacements = 0;
    bool isCounted = false; // `replacements` includes the present loss
};

} // namespace Kest::Settings
