// When a pipe is replaced that another process has put at the path of ours.
#pragma once

#include <algorithm>
#include <chrono>

namespace Kest::Settings {

/// Two agents with different settings folders use one path. Each replacement by a pipe that another process
/// reads doubles the time before that pipe is replaced, up to 60 s: without it both would replace each
/// other's pipe every second. Not synchronised.
class PipeRivalry {
public:
    using Clock = std::chrono::steady_clock;

    static constexpr std::chrono::seconds kMaxDelay{60};
    /// The replacements are forgotten when ours stayed this long. More than two delays of the other agent.
    static constexpr std::chrono::seconds kSettled{180};

    /// Our pipe is at the path.
    void made(Clock::time_point now)
    {
        madeAt = now;
        isCounted = false;
    }

    /// Returns whether the pipe may be made again. Called while it is lost; `isReadByAnother` is whether
    /// another process reads a pipe at the path now. Anything else at the path is replaced without a delay.
    bool mayReplace(bool isReadByAnother, Clock::time_point now)
    {
        if (!isReadByAnother)
            return true;
        if (!isCounted) {
            isCounted = true;
            replacements = now - madeAt < kSettled ? replacements + 1 : 1;
            retryAt = now + delay();
        }
        return now >= retryAt;
    }

    /// How often in a row another process replaced ours, this loss included; 0 when this loss has another
    /// cause.
    int losses() const { return isCounted ? replacements : 0; }

private:
    // None after the first one, which an agent that starts and ends may cause.
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
