// The scenario language, which --help describes: the actions of the simulated host, one command per line.
#pragma once

#include "tools/k3dhost_simulator/Failure.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace K3DHostSimulator {

class ScenarioPlayer;

struct Command {
    int line = 0; // its number in the scenario, from 1
    bool isStart = false;
    std::function<Failure(ScenarioPlayer&)> play; // executes it, or begins a wait
};

/// A blank line or a comment has neither a command nor an error.
struct ParsedLine {
    std::optional<Command> command;
    std::string error; // "line 3: unknown command 'bsu'"
};

/// Parses one line without its line feed; `number` is its line number.
ParsedLine parseLine(std::string_view text, int number);

} // namespace K3DHostSimulator
