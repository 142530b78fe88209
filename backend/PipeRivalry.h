// Decides when to replace another process's pipe at the path of the agent's pipe.
#pragma once

#include <algorithm>
#include <chrono>

namespace Kest::Settings {

/// Two agents with different settings folders use the same path for their pipes. A delay before a replacement
/// keeps them from replacing each other's pipe every second. The first replacement has no delay; the next
/// ones have delays of 2, 4, 8, 16 and 32 seconds, then always 60 seconds. "Our pipe" is the pipe of this
/// agent. Not synchronised.
class PipeRivalry {
public:
    using Clock = std::chrono::steady_clock;

    static constexpr std::chrono::seconds kMaxDelay{60};
    /// If our pipe was at the path for at least this time, which is three times `kMaxDelay`, the next
    /// replacement has no delay again.
    static constexpr std::chrono::seconds kStable{180};

    /// Records that our pipe was created at the path.
    void pipeCreated(Clock::time_point now)
    {
        createdAt = now;
        isCounted = false;
    }

    /// Returns whether our pipe may be created again now. Call this function repeatedly after our pipe was
    /// removed from the path, until it returns true. `isReadByAnother` means that another process now reads a
    /// pipe at the path; if it is false, there is no delay.
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

    /// Returns how many times another process has replaced our pipe since it was last at the path for
    /// `kStable`, including the present loss. Returns 0 if our pipe is at the path, or was lost for another
    /// reason.
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
