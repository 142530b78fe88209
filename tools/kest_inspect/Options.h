// The command line of kest-inspect.
#pragma once

#include <chrono>
#include <optional>

namespace KestInspect {

struct Options {
    enum class Command { session, watch, doctor };

    Command command = Command::session;
    bool json = false;
    std::chrono::milliseconds interval{200};        // watch: between two looks
    std::optional<std::chrono::milliseconds> limit; // watch: how long, for ever without one
};

/// What the program is to do, or nothing when all is said already: then `exitStatus` is 0 after --help and
/// --version, and 2 after a wrong command line, which was answered with one line on standard error.
std::optional<Options> parseOptions(int argc, char** argv, int& exitStatus);

} // namespace KestInspect
