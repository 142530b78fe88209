// The command line of kest-inspect.
#pragma once

#include <optional>

namespace KestInspect {

struct Options {
    enum class Command { session, watch, doctor };

    Command command = Command::session;
    bool json = false;          // print JSON
    int interval = 200;         // watch: polling interval in milliseconds
    std::optional<int> seconds; // watch: duration in seconds; nullopt: unlimited
};

/// Returns the parsed options; nullopt if the program must exit: `exitStatus` is then its exit status.
std::optional<Options> parseOptions(int argc, char** argv, int& exitStatus);

} // namespace KestInspect
