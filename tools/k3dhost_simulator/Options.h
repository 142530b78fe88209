// The command line of k3dhost-simulator.
#pragma once

#include <optional>
#include <string>

namespace K3DHostSimulator {

struct Options {
    std::optional<std::string> scenario; // a path, or "-" for standard input; nullopt: none
    bool check = false;                  // only check whether a host is running
};

/// Returns the parsed options; nullopt if the program must exit: `exitStatus` is then its exit status.
std::optional<Options> parseOptions(int argc, char** argv, int& exitStatus);

} // namespace K3DHostSimulator
