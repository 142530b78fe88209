// The simulated host as a scenario plays it, with what the scenario waits for.
#pragma once

#include "tools/k3dhost_simulator/Host.h"

#include <chrono>
#include <deque>
#include <optional>
#include <string>

namespace K3DHostSimulator {

class ScenarioPlayer {
public:
    /// `print` gets each line of the host.
    explicit ScenarioPlayer(const Host::Print& print);

    Host& host() { return played; }

    /// Restarts the host and forgets the lines of an earlier start.
    Failure start(int wordSize, bool withSettings);
    void end();
    /// Ends the process, so that the segments stay.
    [[noreturn]] static void killSelf();

    /// Begins to wait until the time is over, or until others have written what prints `line`, unless that is
    /// empty. Each line is taken by one wait, and may come before it.
    void wait(std::chrono::milliseconds atMost, const std::string& line);
    /// Whether a wait is not over yet.
    bool isWaiting();
    /// Set when a wait for a line has ended without it.
    const Failure& failure() const { return timedOut; }

    /// Whether the scenario has ended the host.
    bool hasEnded() const { return ended; }

private:
    using Clock = std::chrono::steady_clock;

    void hear(const std::string& line);
    bool takeHeard(const std::string& line);

    Host played;
    std::deque<std::string> heard; // lines that others' writing printed and no wait has taken
    std::optional<std::string> awaited;
    std::chrono::milliseconds patience{};
    Clock::time_point waitEnds;
    Failure timedOut;
    bool ended = false;
};

} // namespace K3DHostSimulator
