// The simulated host, controlled by a scenario, and the scenario's waits.
#pragma once

#include "tools/k3dhost_simulator/Host.h"

#include <chrono>
#include <deque>
#include <optional>
#include <string>

namespace K3DHostSimulator {

class ScenarioPlayer {
public:
    /// `print` is called with each line of the host.
    explicit ScenarioPlayer(const Host::Print& print);

    Host& host() { return simulatedHost; }

    /// Restarts the host and discards the lines of earlier starts.
    Failure start(int wordSize, bool withSettings);
    void end();
    /// Kills this process, so that the segments remain.
    [[noreturn]] static void killSelf();

    /// Begins a wait until the time is over or, unless `line` is empty, until a write of another process
    /// prints `line`. Each printed line ends one wait, which may begin after it.
    void wait(std::chrono::milliseconds atMost, const std::string& line);
    /// Returns whether a wait is not over yet.
    bool isWaiting();
    /// Set after a wait for a line has timed out.
    const Failure& failure() const { return timedOut; }

    /// Returns whether the scenario has ended the host.
    bool hasEnded() const { return ended; }

private:
    using Clock = std::chrono::steady_clock;

    void recordWrite(const std::string& line);
    bool takeWrite(const std::string& line);

    Host simulatedHost;
    std::deque<std::string> unusedWrites; // lines about writes of other processes that no wait has used
    std::optional<std::string> awaited;
    std::chrono::milliseconds timeout{};
    Clock::time_point waitEnds;
    Failure timedOut;
    bool ended = false;
};

} // namespace K3DHostSimulator
