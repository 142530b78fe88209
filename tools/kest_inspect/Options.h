// The command line of kest-inspect.
#pragma once

#include <optional>

namespace KestInspect {

struct Options {
    enum class Command { session, watch, doctor };

    Command command = Command::session;
    bool json = false;
    int interval = 200;         // watch: milliseconds between two readings
    std::optional<int> seconds; // watch: how long, without an end by default
};

/// Returns what the program is to do; nullopt when it is to end with `exitStatus`, see CommandLine::parse.
std::optional<Options> parseOptions(int argc, char** argv, int& exitStatus);

} // namespace KestInspect
