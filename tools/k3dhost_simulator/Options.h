// The command line of k3dhost-simulator.
#pragma once

#include <optional>
#include <string>

namespace K3DHostSimulator {

struct Options {
    std::optional<std::string> scenario; // a path, or "-" for standard input
    bool check = false;
};

/// What the program is to do, or nothing when all is said already: then `exitStatus` is 0 after --help, and 2
/// after a wrong command line, which was answered with one line on standard error.
std::optional<Options> parseOptions(int argc, char** argv, int& exitStatus);

} // namespace K3DHostSimulator
