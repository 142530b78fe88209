// Plays the commands of a scenario on a host.
#pragma once

#include "tools/k3dhost_simulator/HeardLines.h"
#include "tools/k3dhost_simulator/Host.h"
#include "tools/k3dhost_simulator/Scenario.h"

#include <chrono>
#include <optional>

namespace K3DHostSimulator {

class ScenarioPlayer {
public:
    using Clock = std::chrono::steady_clock;

    /// A wait for a line is satisfied by one of `heardLines`, which it takes; those of an earlier start are
    /// forgotten.
    ScenarioPlayer(Host& playedHost, HeardLines& heardLines) : host(playedHost), heard(heardLines) {}

    /// Carries out a command, or begins to wait. `Kill` does not return.
    Failure play(const Command& command);

    /// Whether a wait is not over yet.
    bool isWaiting();
    /// Set when a wait for a line has ended without it.
    const Failure& failure() const { return timedOut; }

    /// Whether `End` was played.
    bool hasEnded() const { return ended; }

private:
    Failure start(const Command& command);

    Host& host;
    HeardLines& heard;
    std::optional<Command> wait;
    Clock::time_point waitEnds;
    Failure timedOut;
    bool ended = false;
};

} // namespace K3DHostSimulator
