// Parses the scenario language: one command for the simulated host per line. k3dhost-simulator --help
// describes the language.
#pragma once

#include "tools/k3dhost_simulator/Failure.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace K3DHostSimulator {

class ScenarioPlayer;

struct Command {
    int line = 0; // the line number in the scenario, from 1
    bool isStart = false;
    std::function<Failure(ScenarioPlayer&)> play; // executes the command; "wait" only begins a wait
};

/// The result of `parseLine`. For a blank line or a comment, it has neither a command nor an error.
struct ParsedLine {
    std::optional<Command> command;
    std::string error; // one line with the line number; empty if there is no error
};

/// Parses one line. `text` must not contain the line feed. `number` is the line number, from 1.
ParsedLine parseLine(std::string_view text, int number);

} // namespace K3DHostSimulator
