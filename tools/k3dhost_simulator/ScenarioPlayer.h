// Executes the commands of a scenario: controls the simulated host and waits.
#pragma once

#include "tools/k3dhost_simulator/Host.h"

#include <chrono>
#include <deque>
#include <optional>
#include <string>

namespace K3DHostSimulator {

class ScenarioPlayer {
public:
    /// `print` is called with each line that `Host` prints about its actions and about writes.
    explicit ScenarioPlayer(const Host::Print& print);

    Host& host() { return simulatedHost; }

    /// Stops the host if it is running, then starts it. Lines that were printed earlier end no later wait.
    /// Fails as `Host::start` does.
    Failure start(int wordSize, bool withSettings);
    /// Stops the host; `hasEnded` returns true afterwards.
    void end();
    /// Prints "host killed" and kills this process with SIGKILL, so that the host's segments remain.
    [[noreturn]] static void killSelf();

    /// Begins a wait and returns at once. `updateWait` ends the wait after `timeLimit`. If `line` is not
    /// empty, it also ends the wait when the host has printed `line` for a write of another process. A line
    /// that was printed between the last `start` and this call counts too. Each printed line ends at most one
    /// wait.
    void wait(std::chrono::milliseconds timeLimit, const std::string& line);
    /// Checks the time and the printed lines, and returns whether the wait continues; false if no wait has
    /// begun. Call it repeatedly until it returns false.
    bool updateWait();
    /// Returns an error if a wait for a line has ever timed out; otherwise nullopt.
    const Failure& failure() const { return timedOut; }

    /// Returns whether `end` was called.
    bool hasEnded() const { return ended; }

private:
    using Clock = std::chrono::steady_clock;

    void recordWrite(const std::string& line);
    bool takeWrite(const std::string& line);

    Host simulatedHost;
    std::deque<std::string> unusedWrites; // lines about writes that have ended no wait; the last 1000
    std::optional<std::string> awaited;   // `line` of the current wait; nullopt if there is none
    std::chrono::milliseconds timeout{};
    Clock::time_point waitEnds;
    Failure timedOut;
    bool ended = false;
};

} // namespace K3DHostSimulator
