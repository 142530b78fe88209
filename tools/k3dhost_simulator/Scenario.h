// The scenario language, as --help describes it: what the simulated host does, one command a line.
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
    std::function<Failure(ScenarioPlayer&)> play; // carries it out, or begins to wait
};

/// Neither a command nor an error: a blank line or a comment.
struct ParsedLine {
    std::optional<Command> command;
    std::string error; // "line 3: unknown command 'bsu'"
};

/// `text` is one line without its line feed, `number` its number.
ParsedLine parseLine(std::string_view text, int number);

} // namespace K3DHostSimulator
