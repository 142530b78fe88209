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
    /// `print` is called with each line that the host prints.
    explicit ScenarioPlayer(const Host::Print& print);

    Host& host() { return simulatedHost; }

    /// Stops the host if it is running, forgets all lines printed so far, and starts the host. Fails as
    /// `Host::start` does.
    Failure start(int wordSize, bool withSettings);
    /// Stops the host; `hasEnded` returns true afterwards.
    void end();
    /// Kills this process with SIGKILL, so that the host's segments remain.
    [[noreturn]] static void killSelf();

    /// Begins a wait, which ends after `timeLimit`. If `line` is not empty, the wait also ends when the host
    /// has printed `line` for a write of another process. A line that was printed before this call counts if
    /// it was printed after the last `start`. Each printed line ends one wait only.
    void wait(std::chrono::milliseconds timeLimit, const std::string& line);
    /// Checks the time and the printed lines, and returns whether the wait continues. Returns false if there
    /// is no wait. Call it repeatedly.
    bool updateWait();
    /// Returns an error after a wait for a line has timed out; otherwise nullopt.
    const Failure& failure() const { return timedOut; }

    /// Returns whether `end` was called.
    bool hasEnded() const { return ended; }

private:
    using Clock = std::chrono::steady_clock;

    void recordWrite(const std::string& line);
    bool takeWrite(const std::string& line);

    Host simulatedHost;
    std::deque<std::string> unusedWrites; // lines that have ended no wait yet, at most 1000
    std::optional<std::string> awaited;   // empty in a wait for time only; nullopt if there is no wait
    std::chrono::milliseconds timeout{};
    Clock::time_point waitEnds;
    Failure timedOut;
    bool ended = false;
};

} // namespace K3DHostSimulator
